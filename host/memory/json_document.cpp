#include "host/memory/json_document.h"

#include <algorithm>

#include "base/huge_pages.h"

namespace orvane::host::memory {

namespace {

// Keys are compared pairwise in small objects and sorted in large ones, so a large object never
// costs time in proportion to its size squared.
bool HasDuplicateKeys(std::vector<std::string_view>& keys) {
  constexpr size_t kPairwiseLimit = 16;
  if (keys.size() <= kPairwiseLimit) {
    for (auto key = keys.begin(); key != keys.end(); ++key) {
      if (std::find(keys.begin(), key, *key) != key) return true;
    }
    return false;
  }
  std::sort(keys.begin(), keys.end());
  return std::adjacent_find(keys.begin(), keys.end()) != keys.end();
}

}  // namespace

std::optional<JsonValue> JsonValue::Find(std::string_view key) const {
  if (!IsObject()) return std::nullopt;
  for (size_t member = 0; member < size(); ++member) {
    if (KeyAt(member) == key) return ValueAt(member);
  }
  return std::nullopt;
}

bool operator==(const JsonValue& a, const JsonValue& b) {
  if (a.kind() != b.kind()) return false;
  switch (a.kind()) {
    case JsonKind::kNull: return true;
    case JsonKind::kBool: return a.Bool() == b.Bool();
    case JsonKind::kSigned: return a.Signed() == b.Signed();
    case JsonKind::kUnsigned: return a.Unsigned() == b.Unsigned();
    case JsonKind::kDouble: return a.Double() == b.Double();
    case JsonKind::kString: return a.String() == b.String();
    case JsonKind::kArray:
      if (a.size() != b.size()) return false;
      for (size_t i = 0; i < a.size(); ++i) {
        if (!(a[i] == b[i])) return false;
      }
      return true;
    case JsonKind::kObject:
      if (a.size() != b.size()) return false;
      for (size_t i = 0; i < a.size(); ++i) {
        if (a.KeyAt(i) != b.KeyAt(i) || !(a.ValueAt(i) == b.ValueAt(i))) return false;
      }
      return true;
  }
  return false;
}

std::optional<JsonDocument> JsonDocument::Adopt(std::unique_ptr<uint64_t[]> tape,
                                                std::unique_ptr<uint8_t[]> text) {
  JsonDocument document;
  document.tape_ = std::move(tape);
  document.text_ = std::move(text);
  if (!document.ListChildren()) return std::nullopt;
  return document;
}

// A container's children become one run only when it closes, since the children of containers
// nested in it arrive in between.
bool JsonDocument::ListChildren() {
  size_t last = tape_[0] & kPayload;  // the closing root word
  struct OpenContainer {
    size_t word;
    size_t firstPending;
  };
  std::vector<OpenContainer> open;
  std::vector<uint32_t> pending;  // children of the open containers, innermost last
  std::vector<std::string_view> keys;
  // Every child is a value on the tape, and so is every container with its count: the room
  // needed is at most one entry per word.
  children_.reserve(last);
  AdviseHugePages(children_.data(), last * sizeof(uint32_t));
  for (size_t at = 1; at < last;) {
    char type = TypeOf(tape_[at]);
    if (type == ']' || type == '}') {
      OpenContainer closing = open.back();
      open.pop_back();
      auto first = pending.begin() + static_cast<ptrdiff_t>(closing.firstPending);
      size_t count = static_cast<size_t>(pending.end() - first);
      if (type == '}') {
        keys.clear();
        for (auto key = first; key < pending.end(); key += 2)
          keys.push_back(JsonValue(*this, *key).String());
        if (HasDuplicateKeys(keys)) return false;
        count /= 2;
      }
      tape_[closing.word] = Word(TypeOf(tape_[closing.word]), children_.size());
      children_.push_back(static_cast<uint32_t>(count));
      children_.insert(children_.end(), first, pending.end());
      pending.erase(first, pending.end());
      ++at;
      continue;
    }
    if (!open.empty()) pending.push_back(static_cast<uint32_t>(at));
    if (type == '[' || type == '{') open.push_back({at, pending.size()});
    at += type == 'l' || type == 'u' || type == 'd' ? 2 : 1;
  }
  return true;
}

JsonDocumentBuilder::JsonDocumentBuilder() {
  tape_.push_back(JsonDocument::Word('r', 0));
}

void JsonDocumentBuilder::String(std::string_view value) {
  tape_.push_back(JsonDocument::Word('"', text_.size()));
  auto length = static_cast<uint32_t>(value.size());
  const auto* lengthBytes = reinterpret_cast<const uint8_t*>(&length);
  text_.insert(text_.end(), lengthBytes, lengthBytes + sizeof length);
  text_.insert(text_.end(), value.begin(), value.end());
  text_.push_back(0);
}

JsonDocument JsonDocumentBuilder::Finish() {
  tape_.push_back(JsonDocument::Word('r', 0));
  tape_[0] = JsonDocument::Word('r', tape_.size() - 1);
  JsonDocument document;
  document.tape_ = std::make_unique_for_overwrite<uint64_t[]>(tape_.size());
  std::copy(tape_.begin(), tape_.end(), document.tape_.get());
  document.text_ = std::make_unique_for_overwrite<uint8_t[]>(text_.size() + 1);
  std::copy(text_.begin(), text_.end(), document.text_.get());
  document.ListChildren();  // the parser behind this builder has rejected duplicate keys
  return document;
}

}  // namespace orvane::host::memory

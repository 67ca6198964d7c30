#include "host/memory/json_document.h"

#include <algorithm>

namespace orvane::host::memory {

namespace {

// Keys are compared pairwise in small objects and sorted in large ones, so a large object never
// costs time in proportion to its size squared.
bool AnyTwoEqual(std::vector<std::string_view>& keys) {
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

size_t JsonValue::CountByStepping() const {
  size_t count = 0;
  for (uint32_t at = FirstChild(), closing = Closing(); at != closing; at = document_->After(at))
    ++count;
  return IsObject() ? count / 2 : count;
}

std::optional<JsonValue> JsonValue::Find(std::string_view key) const {
  for (JsonMember member : Members()) {
    if (member.key == key) return member.value;
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
    case JsonKind::kArray: {
      if (a.size() != b.size()) return false;
      JsonElements others = b.Elements();
      auto other = others.begin();
      for (JsonElement element : a.Elements()) {
        if (!(element.value == (*other).value)) return false;
        ++other;
      }
      return true;
    }
    case JsonKind::kObject: {
      if (a.size() != b.size()) return false;
      JsonMembers others = b.Members();
      auto other = others.begin();
      for (JsonMember member : a.Members()) {
        if (member.key != (*other).key || !(member.value == (*other).value)) return false;
        ++other;
      }
      return true;
    }
  }
  return false;
}

JsonDocument JsonDocument::Adopt(std::unique_ptr<uint64_t[]> tape,
                                 std::unique_ptr<uint8_t[]> text) {
  JsonDocument document;
  document.tape_ = std::move(tape);
  document.text_ = std::move(text);
  return document;
}

// Every word is met once on the way through, and each object's keys once more when it is met.
bool JsonDocument::HasDuplicateKeys() const {
  auto last = static_cast<uint32_t>(tape_[0] & kPayload);  // the closing root word
  std::vector<std::string_view> keys;
  for (uint32_t at = 1; at < last;) {
    char type = TypeOf(tape_[at]);
    if (type == '{') {
      keys.clear();
      for (JsonMember member : JsonValue(*this, at).Members())
        keys.push_back(member.key);
      if (AnyTwoEqual(keys)) return true;
    }
    at += type == 'l' || type == 'u' || type == 'd' ? 2 : 1;
  }
  return false;
}

JsonDocumentBuilder::JsonDocumentBuilder() {
  tape_.push_back(JsonDocument::Word('r', 0));
}

void JsonDocumentBuilder::AppendString(std::string_view value) {
  tape_.push_back(JsonDocument::Word('"', text_.size()));
  auto length = static_cast<uint32_t>(value.size());
  const auto* lengthBytes = reinterpret_cast<const uint8_t*>(&length);
  text_.insert(text_.end(), lengthBytes, lengthBytes + sizeof length);
  text_.insert(text_.end(), value.begin(), value.end());
  text_.push_back(0);
}

void JsonDocumentBuilder::Start(char type) {
  CountValue();
  open_.push_back({static_cast<uint32_t>(tape_.size()), type == '[', 0});
  tape_.push_back(0);  // written once the container closes and its end is known
}

// As simdjson writes them: the start word holds the place after the closing word and the count,
// the closing word the place of the start.
void JsonDocumentBuilder::End(char type) {
  OpenContainer closing = open_.back();
  open_.pop_back();
  tape_.push_back(JsonDocument::Word(type == '[' ? ']' : '}', closing.word));
  tape_[closing.word] =
      JsonDocument::ContainerWord(type, static_cast<uint32_t>(tape_.size()), closing.count);
}

JsonDocument JsonDocumentBuilder::Finish() {
  tape_.push_back(JsonDocument::Word('r', 0));
  tape_[0] = JsonDocument::Word('r', tape_.size() - 1);
  JsonDocument document;
  document.tape_ = std::make_unique_for_overwrite<uint64_t[]>(tape_.size());
  std::copy(tape_.begin(), tape_.end(), document.tape_.get());
  document.text_ = std::make_unique_for_overwrite<uint8_t[]>(text_.size() + 1);
  std::copy(text_.begin(), text_.end(), document.text_.get());
  return document;  // the parser behind this builder has rejected duplicate keys
}

}  // namespace orvane::host::memory

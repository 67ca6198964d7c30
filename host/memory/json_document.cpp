#include "host/memory/json_document.h"

#include "base/huge_pages.h"

namespace orvane::host::memory {

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

uint32_t JsonDocumentBuilder::Add(JsonDocument::Node node) {
  auto number = static_cast<uint32_t>(document_.nodes_.size());
  document_.nodes_.push_back(node);
  if (!open_.empty()) pending_.push_back(number);
  return number;
}

void JsonDocumentBuilder::Null() {
  Add({JsonKind::kNull, 0, {.unsignedValue = 0}});
}

void JsonDocumentBuilder::Bool(bool value) {
  Add({JsonKind::kBool, 0, {.boolean = value}});
}

void JsonDocumentBuilder::Signed(int64_t value) {
  Add({JsonKind::kSigned, 0, {.signedValue = value}});
}

void JsonDocumentBuilder::Unsigned(uint64_t value) {
  Add({JsonKind::kUnsigned, 0, {.unsignedValue = value}});
}

void JsonDocumentBuilder::Double(double value) {
  Add({JsonKind::kDouble, 0, {.doubleValue = value}});
}

void JsonDocumentBuilder::String(std::string_view value) {
  Add({JsonKind::kString, static_cast<uint32_t>(value.size()), {.offset = document_.text_.size()}});
  document_.text_.append(value);
}

void JsonDocumentBuilder::Reserve(size_t nodes, size_t children, size_t textBytes) {
  document_.nodes_.reserve(nodes);
  document_.children_.reserve(children);
  document_.text_.reserve(textBytes);
  AdviseHugePages(document_.nodes_.data(), nodes * sizeof(JsonDocument::Node));
  AdviseHugePages(document_.children_.data(), children * sizeof(uint32_t));
  AdviseHugePages(document_.text_.data(), textBytes);
}

void JsonDocumentBuilder::Open(JsonKind kind) {
  uint32_t node = Add({kind, 0, {.offset = 0}});
  open_.push_back({node, pending_.size()});
}

// A container's children become one run in children_ only when it closes, since the children of
// containers nested in it arrive in between.
void JsonDocumentBuilder::End() {
  OpenContainer closing = open_.back();
  open_.pop_back();
  JsonDocument::Node& node = document_.nodes_[closing.node];
  size_t count = pending_.size() - closing.firstPending;
  node.offset = document_.children_.size();
  node.count = static_cast<uint32_t>(node.kind == JsonKind::kObject ? count / 2 : count);
  document_.children_.insert(document_.children_.end(), pending_.begin() + closing.firstPending,
                             pending_.end());
  pending_.resize(closing.firstPending);
}

}  // namespace orvane::host::memory

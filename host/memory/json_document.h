// A parsed JSON text held compactly for one read: every value is a 16-byte node in one array,
// containers list their children in a second array, and all strings share one buffer. A scene
// file of 100,000 objects holds millions of values; a node per value and no allocation per node
// keep loading it in proportion to its bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::host::memory {

class JsonDocument;

enum class JsonKind : uint8_t {
  kNull,
  kBool,
  kSigned,
  kUnsigned,
  kDouble,
  kString,
  kArray,
  kObject
};

// A value inside a document; valid while the document lives and stays where it is.
// Integers below zero are signed, all others unsigned.
class JsonValue {
 public:
  JsonValue(const JsonDocument& document, uint32_t node) : document_(&document), node_(node) {}

  JsonKind kind() const;
  bool IsNull() const { return kind() == JsonKind::kNull; }
  bool IsBool() const { return kind() == JsonKind::kBool; }
  bool IsString() const { return kind() == JsonKind::kString; }
  bool IsArray() const { return kind() == JsonKind::kArray; }
  bool IsObject() const { return kind() == JsonKind::kObject; }
  bool IsInteger() const { return kind() == JsonKind::kSigned || kind() == JsonKind::kUnsigned; }
  bool IsUnsigned() const { return kind() == JsonKind::kUnsigned; }
  bool IsNumber() const { return IsInteger() || kind() == JsonKind::kDouble; }

  // Each reads a value of its own kind; Double reads any number, as a double.
  bool Bool() const;
  int64_t Signed() const;
  uint64_t Unsigned() const;
  double Double() const;
  std::string_view String() const;

  // Elements of an array or members of an object; 0 for any other value.
  size_t size() const;
  JsonValue operator[](size_t element) const;
  std::string_view KeyAt(size_t member) const;
  JsonValue ValueAt(size_t member) const;
  // The member with this key, or none. Objects of a scene file are small: the scan is linear.
  std::optional<JsonValue> Find(std::string_view key) const;

  // Same kinds, same values, members in the same order.
  friend bool operator==(const JsonValue& a, const JsonValue& b);

 private:
  const JsonDocument* document_;
  uint32_t node_;
};

class JsonDocument {
 public:
  // The first value built; the document must not be empty.
  JsonValue root() const { return JsonValue(*this, 0); }

 private:
  friend class JsonValue;
  friend class JsonDocumentBuilder;

  struct Node {
    JsonKind kind;
    uint32_t count;  // elements, members, or a string's bytes
    union {
      bool boolean;
      int64_t signedValue;
      uint64_t unsignedValue;
      double doubleValue;
      uint64_t offset;  // of a string in text_, or of a container's children in children_
    };
  };

  std::vector<Node> nodes_;
  // Per container, its children's node numbers in order; an object's are key, value, key, ...
  std::vector<uint32_t> children_;
  std::string text_;
};

// The accessors the reader calls for every value are inline: a 100,000-object file makes
// hundreds of millions of such calls.
inline JsonKind JsonValue::kind() const {
  return document_->nodes_[node_].kind;
}

inline bool JsonValue::Bool() const {
  return document_->nodes_[node_].boolean;
}

inline int64_t JsonValue::Signed() const {
  return document_->nodes_[node_].signedValue;
}

inline uint64_t JsonValue::Unsigned() const {
  return document_->nodes_[node_].unsignedValue;
}

inline double JsonValue::Double() const {
  const JsonDocument::Node& node = document_->nodes_[node_];
  switch (node.kind) {
    case JsonKind::kSigned: return static_cast<double>(node.signedValue);
    case JsonKind::kUnsigned: return static_cast<double>(node.unsignedValue);
    default: return node.doubleValue;
  }
}

inline size_t JsonValue::size() const {
  const JsonDocument::Node& node = document_->nodes_[node_];
  return node.kind == JsonKind::kArray || node.kind == JsonKind::kObject ? node.count : 0;
}

inline JsonValue JsonValue::operator[](size_t element) const {
  return JsonValue(*document_, document_->children_[document_->nodes_[node_].offset + element]);
}

inline std::string_view JsonValue::String() const {
  const JsonDocument::Node& node = document_->nodes_[node_];
  return std::string_view(document_->text_.data() + node.offset, node.count);
}

inline std::string_view JsonValue::KeyAt(size_t member) const {
  return (*this)[2 * member].String();
}

inline JsonValue JsonValue::ValueAt(size_t member) const {
  return (*this)[2 * member + 1];
}

// Builds a document from a parser's events in text order. Keys are not checked for duplicates
// here: each parser reports them in its own way.
class JsonDocumentBuilder {
 public:
  void Null();
  void Bool(bool value);
  void Signed(int64_t value);
  void Unsigned(uint64_t value);
  void Double(double value);
  void String(std::string_view value);
  void StartArray() { Open(JsonKind::kArray); }
  void StartObject() { Open(JsonKind::kObject); }
  void Key(std::string_view key) { String(key); }
  void End();  // of the innermost array or object
  // Room for a whole document, when its size is known beforehand: growing by steps would copy
  // hundreds of megabytes.
  void Reserve(size_t nodes, size_t children, size_t textBytes);

  JsonDocument Finish() { return std::move(document_); }

 private:
  struct OpenContainer {
    uint32_t node;
    size_t firstPending;
  };

  uint32_t Add(JsonDocument::Node node);
  void Open(JsonKind kind);

  JsonDocument document_;
  std::vector<OpenContainer> open_;
  std::vector<uint32_t> pending_;  // children of the open containers, innermost last
};

}  // namespace orvane::host::memory

// A parsed JSON text held compactly for one read. Values lie on a tape in simdjson's layout: one
// 64-bit word per value (a type character in the top byte) and a second one for a number's
// bits; a string's word points at its length and bytes in a text buffer. A text that simdjson
// parsed is therefore adopted as it stands, not copied, and the nlohmann path writes the same
// layout. Each container's children are listed in a second array, so the reader reaches any
// element or member in one step. A scene file of 100,000 objects holds millions of values.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
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
  // The first value on the tape; the document must not be empty.
  JsonValue root() const { return JsonValue(*this, 1); }

  // Takes over a tape and text buffer in simdjson's layout, and lists every container's
  // children. None when an object holds a key twice, which the layout itself allows.
  static std::optional<JsonDocument> Adopt(std::unique_ptr<uint64_t[]> tape,
                                           std::unique_ptr<uint8_t[]> text);

 private:
  friend class JsonValue;
  friend class JsonDocumentBuilder;

  static constexpr uint64_t kPayload = (uint64_t{1} << 56) - 1;
  static char TypeOf(uint64_t word) { return static_cast<char>(word >> 56); }
  static uint64_t Word(char type, uint64_t payload) {
    return static_cast<uint64_t>(static_cast<unsigned char>(type)) << 56 | payload;
  }

  // Replaces each container's start word payload with the place of its children: their number,
  // then their tape positions (an object's are key, value, key, ...).
  bool ListChildren();

  std::unique_ptr<uint64_t[]> tape_;  // a root word first and last, as simdjson writes it
  std::unique_ptr<uint8_t[]> text_;   // per string: its length (32 bits), its bytes, a NUL
  std::vector<uint32_t> children_;
};

// The accessors the reader calls for every value are inline: a 100,000-object file makes
// hundreds of millions of such calls.
inline JsonKind JsonValue::kind() const {
  const uint64_t* word = &document_->tape_[node_];
  switch (JsonDocument::TypeOf(*word)) {
    case 'n': return JsonKind::kNull;
    case 't':
    case 'f': return JsonKind::kBool;
    case 'l': return static_cast<int64_t>(word[1]) < 0 ? JsonKind::kSigned : JsonKind::kUnsigned;
    case 'u': return JsonKind::kUnsigned;
    case 'd': return JsonKind::kDouble;
    case '"': return JsonKind::kString;
    case '[': return JsonKind::kArray;
    default: return JsonKind::kObject;
  }
}

inline bool JsonValue::Bool() const {
  return JsonDocument::TypeOf(document_->tape_[node_]) == 't';
}

inline int64_t JsonValue::Signed() const {
  return static_cast<int64_t>(document_->tape_[node_ + 1]);
}

inline uint64_t JsonValue::Unsigned() const {
  return document_->tape_[node_ + 1];
}

inline double JsonValue::Double() const {
  const uint64_t* word = &document_->tape_[node_];
  switch (JsonDocument::TypeOf(*word)) {
    case 'l': return static_cast<double>(static_cast<int64_t>(word[1]));
    case 'u': return static_cast<double>(word[1]);
    default: return std::bit_cast<double>(word[1]);
  }
}

inline size_t JsonValue::size() const {
  JsonKind own = kind();
  if (own != JsonKind::kArray && own != JsonKind::kObject) return 0;
  return document_->children_[document_->tape_[node_] & JsonDocument::kPayload];
}

inline JsonValue JsonValue::operator[](size_t element) const {
  size_t first = (document_->tape_[node_] & JsonDocument::kPayload) + 1;
  return JsonValue(*document_, document_->children_[first + element]);
}

inline std::string_view JsonValue::String() const {
  const uint8_t* at = &document_->text_[document_->tape_[node_] & JsonDocument::kPayload];
  uint32_t length = 0;
  std::memcpy(&length, at, sizeof length);
  return std::string_view(reinterpret_cast<const char*>(at + sizeof length), length);
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
  JsonDocumentBuilder();
  void Null() { tape_.push_back(JsonDocument::Word('n', 0)); }
  void Bool(bool value) { tape_.push_back(JsonDocument::Word(value ? 't' : 'f', 0)); }
  void Signed(int64_t value) { Number('l', static_cast<uint64_t>(value)); }
  void Unsigned(uint64_t value) { Number('u', value); }
  void Double(double value) { Number('d', std::bit_cast<uint64_t>(value)); }
  void String(std::string_view value);
  void StartArray() { tape_.push_back(JsonDocument::Word('[', 0)); }
  void StartObject() { tape_.push_back(JsonDocument::Word('{', 0)); }
  void Key(std::string_view key) { String(key); }
  void EndArray() { tape_.push_back(JsonDocument::Word(']', 0)); }
  void EndObject() { tape_.push_back(JsonDocument::Word('}', 0)); }

  JsonDocument Finish();

 private:
  void Number(char type, uint64_t bits) {
    tape_.push_back(JsonDocument::Word(type, 0));
    tape_.push_back(bits);
  }

  std::vector<uint64_t> tape_;
  std::vector<uint8_t> text_;
};

}  // namespace orvane::host::memory

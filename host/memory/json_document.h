// A parsed JSON text held compactly for one read, in simdjson's tape layout: one 64-bit word per
// value (a type character in the top byte) and a second one for a number's bits; a string's word
// points at its length and bytes in a text buffer; a container's start word holds the place just
// past its end and the number of its children. A text that simdjson parsed is therefore adopted
// as it stands, not copied, and the nlohmann path writes the same layout. Children are reached by
// stepping from one to the next, a container in one step: scene files are read in order, and an
// index of every child would cost a large file tens of megabytes and a pass of its own.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace orvane::host::memory {

class JsonDocument;
struct JsonElement;
struct JsonMember;
template <class Item>
class JsonChildren;
using JsonElements = JsonChildren<JsonElement>;
using JsonMembers = JsonChildren<JsonMember>;

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
  JsonValue(const JsonDocument& document, uint32_t word) : document_(&document), word_(word) {}

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
  // An array's elements in order; none for any other value.
  JsonElements Elements() const;
  // An object's members in order; none for any other value.
  JsonMembers Members() const;
  // Steps over the elements before it: for the short arrays of a point or a face. Longer lists
  // are read through Elements().
  JsonValue operator[](size_t element) const;
  // The member with this key, or none. Objects of a scene file are small: the scan is linear.
  std::optional<JsonValue> Find(std::string_view key) const;

  // Same kinds, same values, members in the same order.
  friend bool operator==(const JsonValue& a, const JsonValue& b);

 private:
  uint64_t word() const;
  bool IsContainer() const;
  // The first child's word and the container's closing word.
  uint32_t FirstChild() const { return word_ + 1; }
  uint32_t Closing() const;
  size_t CountByStepping() const;

  const JsonDocument* document_;
  uint32_t word_;
};

struct JsonMember {
  std::string_view key;
  JsonValue value;
};

class JsonDocument {
 public:
  // The first value on the tape; the document must not be empty.
  JsonValue root() const { return JsonValue(*this, 1); }

  // Takes over a tape and text buffer in simdjson's layout.
  static JsonDocument Adopt(std::unique_ptr<uint64_t[]> tape, std::unique_ptr<uint8_t[]> text);

  // Whether an object holds a key twice, which the layout itself allows. One read of the whole
  // document, which changes nothing: it may run beside other readers.
  bool HasDuplicateKeys() const;

 private:
  friend class JsonValue;
  template <class Item>
  friend class JsonChildren;
  friend class JsonDocumentBuilder;

  static constexpr uint64_t kPayload = (uint64_t{1} << 56) - 1;
  // A container's count of children saturates at this; a larger one is counted by stepping.
  static constexpr uint32_t kCountLimit = 0xFFFFFF;
  static char TypeOf(uint64_t word) { return static_cast<char>(word >> 56); }
  static uint64_t Word(char type, uint64_t payload) {
    return static_cast<uint64_t>(static_cast<unsigned char>(type)) << 56 | payload;
  }
  static uint64_t ContainerWord(char type, uint32_t after, size_t count) {
    uint64_t saturated = std::min<size_t>(count, kCountLimit);
    return Word(type, saturated << 32 | after);
  }

  // The word of the value after the one at `word`, nested values skipped.
  uint32_t After(uint32_t word) const {
    uint64_t value = tape_[word];
    switch (TypeOf(value)) {
      case '[':
      case '{': return static_cast<uint32_t>(value);
      case 'l':
      case 'u':
      case 'd': return word + 2;
      default: return word + 1;
    }
  }
  std::string_view StringAt(uint32_t word) const;

  std::unique_ptr<uint64_t[]> tape_;  // a root word first and last, as simdjson writes it
  std::unique_ptr<uint8_t[]> text_;   // per string: its length (32 bits), its bytes, a NUL
};

struct JsonElement {
  size_t index;
  JsonValue value;
};

// The elements of an array (JsonElement, each with its index) or the members of an object
// (JsonMember: each key's word is followed by its value), read in order.
template <class Item>
class JsonChildren {
 public:
  class Iterator {
   public:
    Item operator*() const {
      if constexpr (kMembers) {
        return {document_->StringAt(word_), JsonValue(*document_, word_ + 1)};
      } else {
        return {index_, JsonValue(*document_, word_)};
      }
    }
    Iterator& operator++() {
      word_ = document_->After(kMembers ? word_ + 1 : word_);
      ++index_;
      return *this;
    }
    bool operator!=(const Iterator& other) const { return word_ != other.word_; }

   private:
    friend class JsonChildren;
    Iterator(const JsonDocument& document, uint32_t word) : document_(&document), word_(word) {}
    const JsonDocument* document_;
    uint32_t word_;
    size_t index_ = 0;
  };

  JsonChildren(const JsonDocument& document, uint32_t first, uint32_t closing)
      : document_(&document), first_(first), closing_(closing) {}
  Iterator begin() const { return Iterator(*document_, first_); }
  Iterator end() const { return Iterator(*document_, closing_); }

 private:
  static constexpr bool kMembers = std::is_same_v<Item, JsonMember>;
  const JsonDocument* document_;
  uint32_t first_;
  uint32_t closing_;
};

// The accessors the reader calls for every value are inline: a 100,000-object file makes
// hundreds of millions of such calls.
inline uint64_t JsonValue::word() const {
  return document_->tape_[word_];
}

inline JsonKind JsonValue::kind() const {
  switch (JsonDocument::TypeOf(word())) {
    case 'n': return JsonKind::kNull;
    case 't':
    case 'f': return JsonKind::kBool;
    case 'l':
      return static_cast<int64_t>(document_->tape_[word_ + 1]) < 0 ? JsonKind::kSigned
                                                                   : JsonKind::kUnsigned;
    case 'u': return JsonKind::kUnsigned;
    case 'd': return JsonKind::kDouble;
    case '"': return JsonKind::kString;
    case '[': return JsonKind::kArray;
    default: return JsonKind::kObject;
  }
}

inline bool JsonValue::IsContainer() const {
  char type = JsonDocument::TypeOf(word());
  return type == '[' || type == '{';
}

inline size_t JsonValue::size() const {
  if (!IsContainer()) return 0;
  auto count = static_cast<uint32_t>(word() >> 32) & JsonDocument::kCountLimit;
  return count < JsonDocument::kCountLimit ? count : CountByStepping();
}

inline uint32_t JsonValue::Closing() const {
  return static_cast<uint32_t>(word()) - 1;
}

inline bool JsonValue::Bool() const {
  return JsonDocument::TypeOf(word()) == 't';
}

inline int64_t JsonValue::Signed() const {
  return static_cast<int64_t>(document_->tape_[word_ + 1]);
}

inline uint64_t JsonValue::Unsigned() const {
  return document_->tape_[word_ + 1];
}

inline double JsonValue::Double() const {
  const uint64_t* at = &document_->tape_[word_];
  switch (JsonDocument::TypeOf(*at)) {
    case 'l': return static_cast<double>(static_cast<int64_t>(at[1]));
    case 'u': return static_cast<double>(at[1]);
    default: return std::bit_cast<double>(at[1]);
  }
}

inline std::string_view JsonDocument::StringAt(uint32_t word) const {
  const uint8_t* at = &text_[tape_[word] & kPayload];
  uint32_t length = 0;
  std::memcpy(&length, at, sizeof length);
  return std::string_view(reinterpret_cast<const char*>(at + sizeof length), length);
}

inline std::string_view JsonValue::String() const {
  return document_->StringAt(word_);
}

inline JsonElements JsonValue::Elements() const {
  if (!IsArray()) return JsonElements(*document_, 0, 0);
  return JsonElements(*document_, FirstChild(), Closing());
}

inline JsonMembers JsonValue::Members() const {
  if (!IsObject()) return JsonMembers(*document_, 0, 0);
  return JsonMembers(*document_, FirstChild(), Closing());
}

inline JsonValue JsonValue::operator[](size_t element) const {
  uint32_t at = FirstChild();
  for (; element > 0; --element)
    at = document_->After(at);
  return JsonValue(*document_, at);
}

// Builds a document from a parser's events in text order. Keys are not checked for duplicates
// here: each parser reports them in its own way.
class JsonDocumentBuilder {
 public:
  JsonDocumentBuilder();
  void Null() { Scalar(JsonDocument::Word('n', 0)); }
  void Bool(bool value) { Scalar(JsonDocument::Word(value ? 't' : 'f', 0)); }
  void Signed(int64_t value) { Number('l', static_cast<uint64_t>(value)); }
  void Unsigned(uint64_t value) { Number('u', value); }
  void Double(double value) { Number('d', std::bit_cast<uint64_t>(value)); }
  void String(std::string_view value) {
    CountValue();
    AppendString(value);
  }
  void StartArray() { Start('['); }
  void StartObject() { Start('{'); }
  // An object counts its members by their keys.
  void Key(std::string_view key) {
    ++open_.back().count;
    AppendString(key);
  }
  void EndArray() { End('['); }
  void EndObject() { End('{'); }

  JsonDocument Finish();

 private:
  struct OpenContainer {
    uint32_t word;
    bool isArray;
    size_t count;
  };

  // A value counts as an element of the array around it; an object's values do not count.
  void CountValue() {
    if (!open_.empty() && open_.back().isArray) ++open_.back().count;
  }
  void Scalar(uint64_t word) {
    CountValue();
    tape_.push_back(word);
  }
  void Number(char type, uint64_t bits) {
    Scalar(JsonDocument::Word(type, 0));
    tape_.push_back(bits);
  }
  void AppendString(std::string_view value);
  void Start(char type);
  void End(char type);

  std::vector<uint64_t> tape_;
  std::vector<uint8_t> text_;
  std::vector<OpenContainer> open_;
};

}  // namespace orvane::host::memory

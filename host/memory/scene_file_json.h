// Reading scene-file JSON strictly: the parse itself (no duplicate keys, no NUL bytes) and
// typed readers of values that name the JSON path of any fault.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/host_types.h"
#include "host/memory/json_document.h"

namespace orvane::host::memory {

// A fault in a scene file: its message starts with the JSON path.
class SceneFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Where a value sits in the file, such as nodes[3].transform[1]. A file of 100,000 objects holds
// millions of values and almost never a fault, so the path is spelt out only for a message: it is
// a chain of links, each a key and/or an index below the link it points to. A path refers to
// the path it was made from, and must not outlive it; an index added to a path that has none
// yet is kept in the same link, so nodes[3] made from a passing "nodes" stands alone.
class JsonPath {
 public:
  JsonPath() = default;  // the whole file
  // A member of the whole file, named by a literal.
  JsonPath(const char* key) : key_(key) {}  // NOLINT(google-explicit-constructor)

  friend JsonPath Member(const JsonPath& path, std::string_view key);
  friend JsonPath Element(const JsonPath& path, size_t index);

  std::string Text() const;

 private:
  static constexpr size_t kNoIndex = static_cast<size_t>(-1);

  JsonPath(const JsonPath* parent, std::string_view key, size_t index)
      : parent_(parent), key_(key), index_(index) {}
  bool IsWholeFile() const { return parent_ == nullptr && key_.empty() && index_ == kNoIndex; }

  const JsonPath* parent_ = nullptr;
  std::string_view key_;
  size_t index_ = kNoIndex;
};

JsonPath Member(const JsonPath& path, std::string_view key);
JsonPath Element(const JsonPath& path, size_t index);

[[noreturn]] inline void Fail(const JsonPath& path, const std::string& message) {
  std::string where = path.Text();
  throw SceneFileError(where.empty() ? message : where + ": " + message);
}

// One JSON object of the file, with the keys it may hold.
class Fields {
 public:
  Fields(JsonValue value, JsonPath path, std::initializer_list<std::string_view> allowed)
      : value_(value), path_(path) {
    if (!value.IsObject()) Fail(path_, "expected an object");
    for (JsonMember member : value.Members()) {
      if (std::find(allowed.begin(), allowed.end(), member.key) == allowed.end()) {
        Fail(Member(path_, member.key), "unknown key");
      }
      keyBits_ |= KeyBit(member.key);
    }
  }

  std::optional<JsonValue> Find(std::string_view key) const {
    if ((keyBits_ & KeyBit(key)) == 0) return std::nullopt;
    return value_.Find(key);
  }
  JsonValue Get(std::string_view key) const {
    std::optional<JsonValue> found = Find(key);
    if (!found) Fail(path_, "missing key \"" + std::string(key) + "\"");
    return *found;
  }
  JsonPath PathOf(std::string_view key) const { return Member(path_, key); }
  const JsonPath& path() const { return path_; }

 private:
  // A bit for each key's length and first letter. Most lookups are of optional keys that an
  // object does not hold, and a clear bit settles them without reading its members.
  static uint64_t KeyBit(std::string_view key) {
    unsigned first = key.empty() ? 0 : static_cast<unsigned char>(key[0]);
    return uint64_t{1} << ((key.size() * 7 + first) & 63);
  }

  JsonValue value_;
  JsonPath path_;
  uint64_t keyBits_ = 0;
};

JsonValue RequireArray(JsonValue value, const JsonPath& path);

std::string ReadString(JsonValue value, const JsonPath& path);

std::u16string ReadText(JsonValue value, const JsonPath& path);

bool ReadBool(JsonValue value, const JsonPath& path);

double ReadDouble(JsonValue value, const JsonPath& path);

// JSON has no infinities or NaN; the scene file writes them as "inf", "-inf" and "nan".
float ReadFloat(JsonValue value, const JsonPath& path);

int64_t ReadInteger(JsonValue value, const JsonPath& path, int64_t low, int64_t high);

int ReadInt(JsonValue value, const JsonPath& path);

// A 32-bit id part: an integer or a hexadecimal string such as "0x240".
uint32_t ReadIdPart(JsonValue value, const JsonPath& path);

// Three plain numbers in the range of a float, or nullopt. Scene files hold millions of them;
// only an odd one is read again with its path, for the message.
std::optional<std::array<float, 3>> PlainTriple(JsonValue value);

std::array<float, 3> ReadTriple(JsonValue value, const JsonPath& path);

Color ReadColor(JsonValue value, const JsonPath& path);

Point3 ReadPoint3(JsonValue value, const JsonPath& path);

Matrix3 ReadMatrix(JsonValue value, const JsonPath& path);

template <class Table>
auto ReadName(const Table& table, JsonValue value, const JsonPath& path, const std::string& what) {
  std::string text = ReadString(value, path);
  for (const auto& [name, code] : table) {
    if (text == name) return code;
  }
  Fail(path, "unknown " + what + " \"" + text + "\"");
}

// Bytes a caller may keep allocated beyond the text (they need not be set), so that the parse
// need not copy the text first.
constexpr size_t kParsePadding = 64;

// The whole text as JSON; a syntax error, a duplicate key or a NUL byte throws SceneFileError.
// readableBeyond: how many bytes after the text may be read (0, or at least kParsePadding).
JsonDocument ParseStrictly(std::string_view text, size_t readableBeyond = 0);
// The same parse, except that a duplicate key may pass: a caller that has other work for the
// meantime runs JsonDocument::HasDuplicateKeys beside it and, on finding one, parses again with
// ParseStrictly for the message.
JsonDocument ParseLeavingKeysUnchecked(std::string_view text, size_t readableBeyond = 0);
// The same parse by nlohmann alone, without the fast path; a fuzzer holds the two to one result.
JsonDocument ParseStrictlyWithNlohmann(std::string_view text);

}  // namespace orvane::host::memory

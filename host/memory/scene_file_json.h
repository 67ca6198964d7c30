// Reading scene-file JSON strictly: the parse itself (no duplicate keys, no NUL bytes) and
// typed readers of values that name the JSON path of any fault.
#pragma once

#include <algorithm>
#include <array>
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

[[noreturn]] inline void Fail(const std::string& path, const std::string& message) {
  throw SceneFileError(path.empty() ? message : path + ": " + message);
}

std::string Member(const std::string& path, std::string_view key);

std::string Element(const std::string& path, size_t index);

// One JSON object of the file, with the keys it may hold.
class Fields {
 public:
  Fields(JsonValue value, std::string path, std::initializer_list<std::string_view> allowed)
      : value_(value), path_(std::move(path)) {
    if (!value.IsObject()) Fail(path_, "expected an object");
    for (size_t member = 0; member < value.size(); ++member) {
      std::string_view key = value.KeyAt(member);
      if (std::find(allowed.begin(), allowed.end(), key) == allowed.end()) {
        Fail(Member(path_, key), "unknown key");
      }
    }
  }

  std::optional<JsonValue> Find(std::string_view key) const { return value_.Find(key); }
  JsonValue Get(std::string_view key) const {
    std::optional<JsonValue> found = Find(key);
    if (!found) Fail(path_, "missing key \"" + std::string(key) + "\"");
    return *found;
  }
  std::string PathOf(std::string_view key) const { return Member(path_, key); }
  const std::string& path() const { return path_; }

 private:
  JsonValue value_;
  std::string path_;
};

JsonValue RequireArray(JsonValue value, const std::string& path);

std::string ReadString(JsonValue value, const std::string& path);

std::u16string ReadText(JsonValue value, const std::string& path);

bool ReadBool(JsonValue value, const std::string& path);

double ReadDouble(JsonValue value, const std::string& path);

// JSON has no infinities or NaN; the scene file writes them as "inf", "-inf" and "nan".
float ReadFloat(JsonValue value, const std::string& path);

int64_t ReadInteger(JsonValue value, const std::string& path, int64_t low, int64_t high);

int ReadInt(JsonValue value, const std::string& path);

// A 32-bit id part: an integer or a hexadecimal string such as "0x240".
uint32_t ReadIdPart(JsonValue value, const std::string& path);

// Three plain numbers in the range of a float, or nullopt. Scene files hold millions of them;
// only an odd one is read again with its path, for the message.
std::optional<std::array<float, 3>> PlainTriple(JsonValue value);

std::array<float, 3> ReadTriple(JsonValue value, const std::string& path);

Color ReadColor(JsonValue value, const std::string& path);

Point3 ReadPoint3(JsonValue value, const std::string& path);

Matrix3 ReadMatrix(JsonValue value, const std::string& path);

template <class Table>
auto ReadName(const Table& table, JsonValue value, const std::string& path,
              const std::string& what) {
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
// The same parse by nlohmann alone, without the fast path; a fuzzer holds the two to one result.
JsonDocument ParseStrictlyWithNlohmann(std::string_view text);

}  // namespace orvane::host::memory

// Reading scene-file JSON strictly: the parse itself (no duplicate keys, no NUL bytes) and
// typed readers of values that name the JSON path of any fault.
#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/host_types.h"

namespace orvane::host::memory {

using json = nlohmann::json;

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
  Fields(const json& value, std::string path, std::initializer_list<std::string_view> allowed)
      : value_(value), path_(std::move(path)) {
    if (!value.is_object()) Fail(path_, "expected an object");
    for (const auto& item : value.items()) {
      if (std::find(allowed.begin(), allowed.end(), item.key()) == allowed.end()) {
        Fail(Member(path_, item.key()), "unknown key");
      }
    }
  }

  const json* Find(std::string_view key) const {
    auto found = value_.find(key);
    return found == value_.end() ? nullptr : &*found;
  }
  const json& Get(std::string_view key) const {
    const json* found = Find(key);
    if (found == nullptr) Fail(path_, "missing key \"" + std::string(key) + "\"");
    return *found;
  }
  std::string PathOf(std::string_view key) const { return Member(path_, key); }
  const std::string& path() const { return path_; }

 private:
  const json& value_;
  std::string path_;
};

const json& RequireArray(const json& value, const std::string& path);

std::string ReadString(const json& value, const std::string& path);

std::u16string ReadText(const json& value, const std::string& path);

bool ReadBool(const json& value, const std::string& path);

double ReadDouble(const json& value, const std::string& path);

// JSON has no infinities or NaN; the scene file writes them as "inf", "-inf" and "nan".
float ReadFloat(const json& value, const std::string& path);

int64_t ReadInteger(const json& value, const std::string& path, int64_t low, int64_t high);

int ReadInt(const json& value, const std::string& path);

// A 32-bit id part: an integer or a hexadecimal string such as "0x240".
uint32_t ReadIdPart(const json& value, const std::string& path);

// Three plain numbers in the range of a float, or nullopt. Scene files hold millions of them;
// only an odd one is read again with its path, for the message.
std::optional<std::array<float, 3>> PlainTriple(const json& value);

std::array<float, 3> ReadTriple(const json& value, const std::string& path);

Color ReadColor(const json& value, const std::string& path);

Point3 ReadPoint3(const json& value, const std::string& path);

Matrix3 ReadMatrix(const json& value, const std::string& path);

template <class Table>
auto ReadName(const Table& table, const json& value, const std::string& path,
              const std::string& what) {
  std::string text = ReadString(value, path);
  for (const auto& [name, code] : table) {
    if (text == name) return code;
  }
  Fail(path, "unknown " + what + " \"" + text + "\"");
}

// The whole text as JSON; a duplicate key or a NUL byte is a fault like any syntax error.
json ParseStrictly(std::string_view text);
// The same parse by nlohmann alone, without the fast path; a fuzzer holds the two to one result.
json ParseStrictlyWithNlohmann(std::string_view text);

// nlohmann's message without its "[json.exception...]" tag.
std::string DescribeJsonError(const json::exception& error);

}  // namespace orvane::host::memory

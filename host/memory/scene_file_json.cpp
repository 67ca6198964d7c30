#include "host/memory/scene_file_json.h"

#ifdef ORVANE_HAVE_SIMDJSON
#include <simdjson.h>
#endif

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <vector>

#include "base/wide_text.h"

namespace orvane::host::memory {

using json = nlohmann::json;

std::string Member(const std::string& path, std::string_view key) {
  return path.empty() ? std::string(key) : path + "." + std::string(key);
}

std::string Element(const std::string& path, size_t index) {
  return path + "[" + std::to_string(index) + "]";
}

const json& RequireArray(const json& value, const std::string& path) {
  if (!value.is_array()) Fail(path, "expected an array");
  return value;
}

std::string ReadString(const json& value, const std::string& path) {
  if (!value.is_string()) Fail(path, "expected a string");
  return value.get<std::string>();
}

std::u16string ReadText(const json& value, const std::string& path) {
  return FromUtf8(ReadString(value, path));
}

bool ReadBool(const json& value, const std::string& path) {
  if (!value.is_boolean()) Fail(path, "expected true or false");
  return value.get<bool>();
}

double ReadDouble(const json& value, const std::string& path) {
  if (!value.is_number()) Fail(path, "expected a number");
  return value.get<double>();
}

// JSON has no infinities or NaN; the scene file writes them as "inf", "-inf" and "nan".
float ReadFloat(const json& value, const std::string& path) {
  if (value.is_number()) {
    double number = value.get<double>();
    if (std::fabs(number) > std::numeric_limits<float>::max()) Fail(path, "out of range");
    return static_cast<float>(number);
  }
  if (value.is_string()) {
    const auto& text = value.get_ref<const std::string&>();
    if (text == "nan") return std::numeric_limits<float>::quiet_NaN();
    if (text == "inf") return std::numeric_limits<float>::infinity();
    if (text == "-inf") return -std::numeric_limits<float>::infinity();
  }
  Fail(path, "expected a number");
}

int64_t ReadInteger(const json& value, const std::string& path, int64_t low, int64_t high) {
  if (!value.is_number_integer()) Fail(path, "expected an integer");
  if (value.is_number_unsigned() && value.get<uint64_t>() > static_cast<uint64_t>(high)) {
    Fail(path, "out of range");
  }
  auto number = value.get<int64_t>();
  if (number < low || number > high) Fail(path, "out of range");
  return number;
}

int ReadInt(const json& value, const std::string& path) {
  return static_cast<int>(ReadInteger(value, path, std::numeric_limits<int32_t>::min(),
                                      std::numeric_limits<int32_t>::max()));
}

// A 32-bit id part: an integer or a hexadecimal string such as "0x240".
uint32_t ReadIdPart(const json& value, const std::string& path) {
  if (value.is_string()) {
    const auto& text = value.get_ref<const std::string&>();
    if (text.size() > 2 && text.size() <= 10 && text[0] == '0' &&
        (text[1] == 'x' || text[1] == 'X') &&
        text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos) {
      return static_cast<uint32_t>(std::stoul(text.substr(2), nullptr, 16));
    }
    Fail(path, "expected an integer or a hexadecimal text such as \"0x240\"");
  }
  return static_cast<uint32_t>(ReadInteger(value, path, 0, std::numeric_limits<uint32_t>::max()));
}

std::optional<std::array<float, 3>> PlainTriple(const json& value) {
  if (!value.is_array() || value.size() != 3) return std::nullopt;
  std::array<float, 3> triple{};
  for (size_t k = 0; k < 3; ++k) {
    if (!value[k].is_number()) return std::nullopt;
    double number = value[k].get<double>();
    if (std::fabs(number) > std::numeric_limits<float>::max()) return std::nullopt;
    triple[k] = static_cast<float>(number);
  }
  return triple;
}

std::array<float, 3> ReadTriple(const json& value, const std::string& path) {
  if (auto plain = PlainTriple(value)) return *plain;
  if (!value.is_array() || value.size() != 3) Fail(path, "expected an array of 3 numbers");
  return {ReadFloat(value[0], Element(path, 0)), ReadFloat(value[1], Element(path, 1)),
          ReadFloat(value[2], Element(path, 2))};
}

Color ReadColor(const json& value, const std::string& path) {
  auto [r, g, b] = ReadTriple(value, path);
  return {r, g, b};
}

Point3 ReadPoint3(const json& value, const std::string& path) {
  auto [x, y, z] = ReadTriple(value, path);
  return {x, y, z};
}

Matrix3 ReadMatrix(const json& value, const std::string& path) {
  if (!value.is_array() || value.size() != 4) Fail(path, "expected an array of 4 rows");
  Matrix3 matrix;
  for (size_t row = 0; row < 4; ++row)
    matrix.rows[row] = ReadPoint3(value[row], Element(path, row));
  return matrix;
}

namespace {

// Builds the document as nlohmann's own parser does, and rejects a duplicate key (which
// nlohmann would silently let the last one win) with its JSON path. The path is only spelt out
// on failure: building it for every container would cost time in proportion to the depth.
class StrictDomBuilder {
 public:
  explicit StrictDomBuilder(json& root) : dom_(root) {}

  bool null() { return CountElement() && dom_.null(); }
  bool boolean(bool value) { return CountElement() && dom_.boolean(value); }
  bool number_integer(json::number_integer_t value) {
    return CountElement() && dom_.number_integer(value);
  }
  bool number_unsigned(json::number_unsigned_t value) {
    return CountElement() && dom_.number_unsigned(value);
  }
  bool number_float(json::number_float_t value, const std::string& text) {
    return CountElement() && dom_.number_float(value, text);
  }
  bool string(std::string& value) { return CountElement() && dom_.string(value); }
  bool binary(json::binary_t& value) { return CountElement() && dom_.binary(value); }
  bool start_object(size_t size) {
    CountElement();
    frames_.push_back({true, {}, {}, 0});
    return dom_.start_object(size);
  }
  bool key(std::string& name) {
    Frame& object = frames_.back();
    if (!object.keys.insert(name).second) {
      object.key = name;
      Fail(Path(), "duplicate key");
    }
    object.key = name;
    return dom_.key(name);
  }
  bool end_object() {
    frames_.pop_back();
    return dom_.end_object();
  }
  bool start_array(size_t size) {
    CountElement();
    frames_.push_back({false, {}, {}, 0});
    return dom_.start_array(size);
  }
  bool end_array() {
    frames_.pop_back();
    return dom_.end_array();
  }
  bool parse_error(size_t position, const std::string& token, const json::exception& error) {
    return dom_.parse_error(position, token, error);  // throws the parser's own error
  }

 private:
  struct Frame {
    bool isObject;
    std::set<std::string> keys;
    std::string key;  // the member being read
    size_t count;     // elements of an array seen so far
  };

  bool CountElement() {
    if (!frames_.empty() && !frames_.back().isObject) ++frames_.back().count;
    return true;
  }
  std::string Path() const {
    std::string path;
    for (const Frame& frame : frames_) {
      path = frame.isObject ? Member(path, frame.key) : Element(path, frame.count - 1);
    }
    return path;
  }

  nlohmann::detail::json_sax_dom_parser<json> dom_;
  std::vector<Frame> frames_;
};

// nlohmann stops at a NUL byte as if the text ended there, which would load a file with garbage
// after it; such a file is not a scene file.
void RejectNulBytes(std::string_view text) {
  size_t nul = text.find('\0');
  if (nul == std::string_view::npos) return;
  size_t lineStart = text.rfind('\n', nul);
  size_t line = 1 + static_cast<size_t>(std::count(text.begin(), text.begin() + nul, '\n'));
  size_t column = nul - (lineStart == std::string_view::npos ? 0 : lineStart + 1) + 1;
  Fail({}, "parse error at line " + std::to_string(line) + ", column " + std::to_string(column) +
               ": a NUL byte, which JSON text cannot contain");
}

#ifdef ORVANE_HAVE_SIMDJSON
// simdjson finds the text's structure several times faster than nlohmann's own lexer; its
// elements are then copied into the nlohmann values the reader walks. Whatever simdjson refuses
// or reads differently from nlohmann goes through the strict parse below instead, which gives
// the exact message: a duplicate key (simdjson keeps both), and -0 (simdjson reads a double,
// nlohmann an integer). Integers that are not negative are nlohmann's unsigned kind.
bool CopyFast(simdjson::dom::element from, json& to) {
  switch (from.type()) {
    case simdjson::dom::element_type::OBJECT: {
      to = json::object();
      for (simdjson::dom::key_value_pair member : simdjson::dom::object(from)) {
        auto [slot, inserted] = to.emplace(std::string(member.key), json());
        if (!inserted || !CopyFast(member.value, slot.value())) return false;
      }
      return true;
    }
    case simdjson::dom::element_type::ARRAY: {
      to = json::array();
      for (simdjson::dom::element item : simdjson::dom::array(from)) {
        to.push_back(json());
        if (!CopyFast(item, to.back())) return false;
      }
      return true;
    }
    case simdjson::dom::element_type::INT64: {
      int64_t value = int64_t(from);
      to = value >= 0 ? json(static_cast<uint64_t>(value)) : json(value);
      return true;
    }
    case simdjson::dom::element_type::UINT64: to = uint64_t(from); return true;
    case simdjson::dom::element_type::DOUBLE: {
      double value = double(from);
      to = value;
      return !(value == 0 && std::signbit(value));
    }
    case simdjson::dom::element_type::STRING: to = std::string(std::string_view(from)); return true;
    case simdjson::dom::element_type::BOOL: to = bool(from); return true;
    case simdjson::dom::element_type::NULL_VALUE: to = nullptr; return true;
  }
  return false;
}

std::optional<json> ParseFast(std::string_view text) {
  simdjson::dom::parser parser;
  simdjson::padded_string padded(text);
  simdjson::dom::element root;
  if (parser.parse(padded).get(root) != simdjson::SUCCESS) return std::nullopt;
  json copy;
  if (!CopyFast(root, copy)) return std::nullopt;
  return copy;
}
#endif

}  // namespace

json ParseStrictly(std::string_view text) {
#ifdef ORVANE_HAVE_SIMDJSON
  RejectNulBytes(text);
  if (std::optional<json> fast = ParseFast(text)) return std::move(*fast);
#endif
  return ParseStrictlyWithNlohmann(text);
}

json ParseStrictlyWithNlohmann(std::string_view text) {
  RejectNulBytes(text);
  json root;
  StrictDomBuilder builder(root);
  json::sax_parse(text, &builder);
  return root;
}

// nlohmann's messages start with an "[json.exception...]" tag that means nothing to a user.
std::string DescribeJsonError(const json::exception& error) {
  std::string message = error.what();
  auto tagEnd = message.find("] ");
  return tagEnd == std::string::npos ? message : message.substr(tagEnd + 2);
}

}  // namespace orvane::host::memory

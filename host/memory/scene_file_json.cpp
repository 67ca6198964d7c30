#include "host/memory/scene_file_json.h"

#ifdef ORVANE_HAVE_SIMDJSON
#include <simdjson.h>
#endif

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/wide_text.h"
#include "host/memory/page_reader.h"

namespace orvane::host::memory {

JsonPath Member(const JsonPath& path, std::string_view key) {
  return JsonPath(path.IsWholeFile() ? nullptr : &path, key, JsonPath::kNoIndex);
}

JsonPath Element(const JsonPath& path, size_t index) {
  if (path.index_ == JsonPath::kNoIndex) return JsonPath(path.parent_, path.key_, index);
  return JsonPath(&path, {}, index);
}

std::string JsonPath::Text() const {
  std::string text = parent_ != nullptr ? parent_->Text() : "";
  if (!key_.empty()) text += (text.empty() ? "" : ".") + std::string(key_);
  if (index_ != kNoIndex) text += "[" + std::to_string(index_) + "]";
  return text;
}

JsonValue RequireArray(JsonValue value, const JsonPath& path) {
  if (!value.IsArray()) Fail(path, "expected an array");
  return value;
}

std::string ReadString(JsonValue value, const JsonPath& path) {
  if (!value.IsString()) Fail(path, "expected a string");
  return std::string(value.String());
}

std::u16string ReadText(JsonValue value, const JsonPath& path) {
  return FromUtf8(ReadString(value, path));
}

bool ReadBool(JsonValue value, const JsonPath& path) {
  if (!value.IsBool()) Fail(path, "expected true or false");
  return value.Bool();
}

double ReadDouble(JsonValue value, const JsonPath& path) {
  if (!value.IsNumber()) Fail(path, "expected a number");
  return value.Double();
}

// JSON has no infinities or NaN; the scene file writes them as "inf", "-inf" and "nan".
float ReadFloat(JsonValue value, const JsonPath& path) {
  if (value.IsNumber()) {
    double number = value.Double();
    if (std::fabs(number) > std::numeric_limits<float>::max()) Fail(path, "out of range");
    return static_cast<float>(number);
  }
  if (value.IsString()) {
    std::string_view text = value.String();
    if (text == "nan") return std::numeric_limits<float>::quiet_NaN();
    if (text == "inf") return std::numeric_limits<float>::infinity();
    if (text == "-inf") return -std::numeric_limits<float>::infinity();
  }
  Fail(path, "expected a number");
}

int64_t ReadInteger(JsonValue value, const JsonPath& path, int64_t low, int64_t high) {
  if (!value.IsInteger()) Fail(path, "expected an integer");
  if (value.IsUnsigned() && value.Unsigned() > static_cast<uint64_t>(high)) {
    Fail(path, "out of range");
  }
  int64_t number = value.IsUnsigned() ? static_cast<int64_t>(value.Unsigned()) : value.Signed();
  if (number < low || number > high) Fail(path, "out of range");
  return number;
}

int ReadInt(JsonValue value, const JsonPath& path) {
  return static_cast<int>(ReadInteger(value, path, std::numeric_limits<int32_t>::min(),
                                      std::numeric_limits<int32_t>::max()));
}

// A 32-bit id part: an integer or a hexadecimal string such as "0x240".
uint32_t ReadIdPart(JsonValue value, const JsonPath& path) {
  if (value.IsString()) {
    std::string_view text = value.String();
    if (text.size() > 2 && text.size() <= 10 && text[0] == '0' &&
        (text[1] == 'x' || text[1] == 'X') &&
        text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string_view::npos) {
      return static_cast<uint32_t>(std::stoul(std::string(text.substr(2)), nullptr, 16));
    }
    Fail(path, "expected an integer or a hexadecimal text such as \"0x240\"");
  }
  return static_cast<uint32_t>(ReadInteger(value, path, 0, std::numeric_limits<uint32_t>::max()));
}

std::optional<std::array<float, 3>> PlainTriple(JsonValue value) {
  if (!value.IsArray() || value.size() != 3) return std::nullopt;
  std::array<float, 3> triple{};
  for (auto [k, element] : value.Elements()) {
    if (!element.IsNumber()) return std::nullopt;
    double number = element.Double();
    if (std::fabs(number) > std::numeric_limits<float>::max()) return std::nullopt;
    triple[k] = static_cast<float>(number);
  }
  return triple;
}

std::array<float, 3> ReadTriple(JsonValue value, const JsonPath& path) {
  if (auto plain = PlainTriple(value)) return *plain;
  if (!value.IsArray() || value.size() != 3) Fail(path, "expected an array of 3 numbers");
  return {ReadFloat(value[0], Element(path, 0)), ReadFloat(value[1], Element(path, 1)),
          ReadFloat(value[2], Element(path, 2))};
}

Color ReadColor(JsonValue value, const JsonPath& path) {
  auto [r, g, b] = ReadTriple(value, path);
  return {r, g, b};
}

Point3 ReadPoint3(JsonValue value, const JsonPath& path) {
  auto [x, y, z] = ReadTriple(value, path);
  return {x, y, z};
}

Matrix3 ReadMatrix(JsonValue value, const JsonPath& path) {
  if (!value.IsArray() || value.size() != 4) Fail(path, "expected an array of 4 rows");
  Matrix3 matrix;
  for (auto [row, point] : value.Elements())
    matrix.rows[row] = ReadPoint3(point, Element(path, row));
  return matrix;
}

namespace {

using json = nlohmann::json;

// Builds the document from nlohmann's parse events, and rejects a duplicate key (which nlohmann
// would silently let the last one win) with its JSON path. The path is only spelt out on failure:
// building it for every container would cost time in proportion to the depth.
class StrictDocumentBuilder {
 public:
  bool null() {
    CountElement();
    document_.Null();
    return true;
  }
  bool boolean(bool value) {
    CountElement();
    document_.Bool(value);
    return true;
  }
  bool number_integer(json::number_integer_t value) {
    CountElement();
    if (value >= 0) {  // -0, which simdjson reads as plain 0
      document_.Unsigned(static_cast<uint64_t>(value));
    } else {
      document_.Signed(value);
    }
    return true;
  }
  bool number_unsigned(json::number_unsigned_t value) {
    CountElement();
    document_.Unsigned(value);
    return true;
  }
  bool number_float(json::number_float_t value, const std::string&) {
    CountElement();
    document_.Double(value);
    return true;
  }
  bool string(std::string& value) {
    CountElement();
    document_.String(value);
    return true;
  }
  bool binary(json::binary_t&) { return false; }  // JSON text holds none
  bool start_object(size_t) {
    CountElement();
    frames_.push_back({true, {}, {}, 0});
    document_.StartObject();
    return true;
  }
  bool key(std::string& name) {
    Frame& object = frames_.back();
    object.key = name;
    if (!object.keys.insert(name).second) throw SceneFileError(Path() + ": duplicate key");
    document_.Key(name);
    return true;
  }
  bool end_object() { return End(); }
  bool start_array(size_t) {
    CountElement();
    frames_.push_back({false, {}, {}, 0});
    document_.StartArray();
    return true;
  }
  bool end_array() { return End(); }
  bool parse_error(size_t, const std::string&, const json::exception& error) {
    // nlohmann's messages start with an "[json.exception...]" tag that means nothing to a user.
    std::string message = error.what();
    auto tagEnd = message.find("] ");
    throw SceneFileError(tagEnd == std::string::npos ? message : message.substr(tagEnd + 2));
  }

  JsonDocument Finish() { return document_.Finish(); }

 private:
  struct Frame {
    bool isObject;
    std::set<std::string> keys;
    std::string key;  // the member being read
    size_t count;     // elements of an array seen so far
  };

  void CountElement() {
    if (!frames_.empty() && !frames_.back().isObject) ++frames_.back().count;
  }
  bool End() {
    if (frames_.back().isObject) {
      document_.EndObject();
    } else {
      document_.EndArray();
    }
    frames_.pop_back();
    return true;
  }
  std::string Path() const {
    JsonPath wholeFile;
    std::vector<JsonPath> links;
    links.reserve(frames_.size());  // each link points at the one before it: no reallocation
    for (const Frame& frame : frames_) {
      const JsonPath& outer = links.empty() ? wholeFile : links.back();
      links.push_back(frame.isObject ? Member(outer, frame.key) : Element(outer, frame.count - 1));
    }
    return links.empty() ? std::string() : links.back().Text();
  }

  JsonDocumentBuilder document_;
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

// The document numbers its values and strings with 32 bits.
void RejectHugeTexts(std::string_view text) {
  if (text.size() >= std::numeric_limits<uint32_t>::max()) {
    Fail({}, "the text is " + std::to_string(text.size()) +
                 " bytes long; scene files of 4 GiB or more are not supported");
  }
}

#ifdef ORVANE_HAVE_SIMDJSON
static_assert(kParsePadding >= simdjson::SIMDJSON_PADDING);

// simdjson parses the whole text into its tape several times faster than nlohmann's lexer, and
// the document takes that tape over as it stands. Whatever simdjson refuses (a number beyond 64
// bits included) goes through the strict parse instead, which gives the exact message, and so
// does a duplicate key, which simdjson keeps: its caller checks the keys.
std::optional<JsonDocument> ParseFast(std::string_view text, size_t readableBeyond) {
  simdjson::dom::parser parser;
  simdjson::dom::element root;
  bool padded = readableBeyond >= simdjson::SIMDJSON_PADDING;
  BackwardPageReader warmer(text);
  if (parser.parse(text.data(), text.size(), !padded).get(root) != simdjson::SUCCESS) {
    return std::nullopt;
  }
  // The parsed document's buffers are public members of simdjson's parser: taking them spares
  // copying millions of values, and the parser's other buffers go with it.
  return JsonDocument::Adopt(std::move(parser.doc.tape), std::move(parser.doc.string_buf));
}
#endif

}  // namespace

JsonDocument ParseStrictly(std::string_view text, size_t readableBeyond) {
  JsonDocument document = ParseLeavingKeysUnchecked(text, readableBeyond);
  if (document.HasDuplicateKeys()) return ParseStrictlyWithNlohmann(text);  // throws the message
  return document;
}

JsonDocument ParseLeavingKeysUnchecked(std::string_view text,
                                       [[maybe_unused]] size_t readableBeyond) {
#ifdef ORVANE_HAVE_SIMDJSON
  // simdjson refuses a NUL byte wherever it stands, so a text holding one is left to the strict
  // parse below, which says where it is: no pass over the whole text looks for one first.
  RejectHugeTexts(text);
  if (std::optional<JsonDocument> fast = ParseFast(text, readableBeyond)) return std::move(*fast);
#endif
  return ParseStrictlyWithNlohmann(text);
}

JsonDocument ParseStrictlyWithNlohmann(std::string_view text) {
  RejectNulBytes(text);
  RejectHugeTexts(text);
  StrictDocumentBuilder builder;
  json::sax_parse(text, &builder);
  return builder.Finish();
}

}  // namespace orvane::host::memory

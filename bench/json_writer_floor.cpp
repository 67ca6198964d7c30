#include "bench/json_writer_floor.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "base/wide_text.h"

namespace orvane::bench {

namespace {

// The escapes that name their character with a letter, as (letter, character).
constexpr std::pair<char, char> kLetterEscapes[] = {
    {'"', '"'}, {'\\', '\\'}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'b', '\b'}, {'f', '\f'}};

bool StartsNumber(char c) {
  return c == '-' || (c >= '0' && c <= '9');
}

bool InNumber(char c) {
  return StartsNumber(c) || c == '.' || c == 'e' || c == 'E' || c == '+';
}

// Decodes the string whose opening quote is at `at` into `out`; answers where it ends.
size_t DecodeString(std::string_view text, size_t at, std::string& out) {
  size_t i = at + 1;
  while (i < text.size() && text[i] != '"') {
    if (text[i] != '\\' || i + 1 >= text.size()) {
      out += text[i++];
      continue;
    }
    char escaped = text[i + 1];
    i += 2;
    if (escaped != 'u') {
      const auto* letter = std::find_if(std::begin(kLetterEscapes), std::end(kLetterEscapes),
                                        [&](const auto& pair) { return pair.first == escaped; });
      out += letter != std::end(kLetterEscapes) ? letter->second : escaped;  // "/" is itself
      continue;
    }
    // A run of escaped units at once, so that a surrogate pair comes out as one character.
    std::u16string units;
    for (;;) {
      units +=
          static_cast<char16_t>(std::strtoul(std::string(text.substr(i, 4)).c_str(), nullptr, 16));
      i += 4;
      if (text.substr(i, 2) != "\\u") break;
      i += 2;
    }
    AppendUtf8(out, units);
  }
  return i + 1;
}

void AppendEscaped(std::string& out, std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  size_t run = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    auto c = static_cast<unsigned char>(text[i]);
    if (c >= 0x20 && c != '"' && c != '\\') continue;
    out.append(text, run, i - run);
    run = i + 1;
    const auto* letter = std::find_if(std::begin(kLetterEscapes), std::end(kLetterEscapes),
                                      [&](const auto& pair) { return pair.second == text[i]; });
    if (letter != std::end(kLetterEscapes)) {
      out += '\\';
      out += letter->first;
    } else {
      out += "\\u00";
      out += kHex[c >> 4];
      out += kHex[c & 0xF];
    }
  }
  out.append(text, run);
}

}  // namespace

JsonValues SplitJson(std::string_view text) {
  JsonValues values;
  auto verbatim = [&](size_t from, size_t to) {
    if (to == from) return;
    values.pieces.push_back({JsonValues::Kind::kVerbatim, values.bytes.size(), to - from, 0});
    values.bytes.append(text, from, to - from);
  };
  size_t plain = 0;
  for (size_t i = 0; i < text.size();) {
    if (text[i] == '"') {
      verbatim(plain, i);
      size_t at = values.bytes.size();
      i = DecodeString(text, i, values.bytes);
      values.pieces.push_back({JsonValues::Kind::kString, at, values.bytes.size() - at, 0});
      plain = i;
    } else if (StartsNumber(text[i])) {
      verbatim(plain, i);
      size_t end = i;
      while (end < text.size() && InNumber(text[end]))
        ++end;
      double number = std::strtod(std::string(text.substr(i, end - i)).c_str(), nullptr);
      values.pieces.push_back({JsonValues::Kind::kNumber, 0, 0, number});
      i = plain = end;
    } else {
      ++i;
    }
  }
  verbatim(plain, text.size());
  return values;
}

void WriteJsonValues(const JsonValues& values, std::string& out) {
  std::string_view bytes = values.bytes;
  for (const JsonValues::Piece& piece : values.pieces) {
    switch (piece.kind) {
      case JsonValues::Kind::kVerbatim: out.append(bytes.substr(piece.at, piece.size)); break;
      case JsonValues::Kind::kString:
        out += '"';
        AppendEscaped(out, bytes.substr(piece.at, piece.size));
        out += '"';
        break;
      case JsonValues::Kind::kNumber: {
        char digits[32];
        auto written = std::to_chars(digits, digits + sizeof digits, piece.number);
        out.append(digits, written.ptr);
        break;
      }
    }
  }
}

}  // namespace orvane::bench

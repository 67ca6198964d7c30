// The least a writer must do to produce a given JSON text from values: copy its punctuation and
// layout, escape its strings and format its numbers. The text is first taken apart into values
// (not timed); writing them out again in a tight loop is the floor a package builder is held to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvane::bench {

struct JsonValues {
  enum class Kind : unsigned char { kVerbatim, kString, kNumber };
  struct Piece {
    Kind kind;
    size_t at = 0, size = 0;  // in `bytes`: verbatim text, or a string's decoded UTF-8
    double number = 0;
  };
  std::vector<Piece> pieces;
  std::string bytes;
};

// Valid JSON text taken apart; what is not a string or a number is kept verbatim.
JsonValues SplitJson(std::string_view text);

// The values written again as JSON text, appended to `out`.
void WriteJsonValues(const JsonValues& values, std::string& out);

}  // namespace orvane::bench

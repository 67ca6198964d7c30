// Text conversions: well-formed input survives a round trip in both directions, and ill-formed
// input always gives well-formed output.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/wide_text.h"
#include "graph/json_text.h"

namespace {

bool IsWellFormedUtf16(const std::u16string& text) {
  for (size_t i = 0; i < text.size(); ++i) {
    char16_t unit = text[i];
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      if (i + 1 >= text.size() || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF) return false;
      ++i;
    } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
      return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane;
  std::string bytes(reinterpret_cast<const char*>(data), size);

  // Bytes as UTF-8: the decoded text is well-formed and encodes back to itself.
  std::u16string decoded = FromUtf8(bytes);
  if (!IsWellFormedUtf16(decoded)) std::abort();
  std::string encoded = ToUtf8(decoded);
  if (FromUtf8(encoded) != decoded) std::abort();
  if (decoded.find(u'\uFFFD') == std::u16string::npos && encoded != bytes) std::abort();

  // Bytes as UTF-16 code units: the encoded text is valid UTF-8 that decodes to the same text
  // when the input was well-formed.
  std::u16string units(size / 2, u'\0');
  for (size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
  }
  std::u16string roundTrip = FromUtf8(ToUtf8(units));
  if (IsWellFormedUtf16(units) && roundTrip != units) std::abort();
  if (!IsWellFormedUtf16(roundTrip)) std::abort();

  // Escaped text never holds a raw control character.
  for (char16_t c : EscapeJsonString(units)) {
    if (c < 0x20) std::abort();
  }
  std::u16string trimmed = TrimWhitespace(units);
  if (trimmed.size() > units.size()) std::abort();
  return 0;
}

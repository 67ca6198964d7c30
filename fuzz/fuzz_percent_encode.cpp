// Percent-encoding of any text: only unreserved characters and escapes come out, and decoding
// them gives back the text's UTF-8 bytes.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/wide_text.h"
#include "service/url.h"

namespace {

int HexValue(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;  // lower-case digits are not written
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane;
  std::u16string text(size / 2, u'\0');
  for (size_t i = 0; i < text.size(); ++i) {
    text[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
  }
  std::u16string encoded = PercentEncode(text);
  std::string decoded;
  for (size_t i = 0; i < encoded.size(); ++i) {
    char16_t c = encoded[i];
    if (c == u'%') {
      if (i + 2 >= encoded.size()) std::abort();
      int high = HexValue(encoded[i + 1]), low = HexValue(encoded[i + 2]);
      if (high < 0 || low < 0) std::abort();
      decoded += static_cast<char>(high * 16 + low);
      i += 2;
      continue;
    }
    bool unreserved = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
                      (c >= u'0' && c <= u'9') || c == u'-' || c == u'.' || c == u'_' || c == u'~';
    if (!unreserved) std::abort();
    decoded += static_cast<char>(c);
  }
  if (decoded != ToUtf8(text)) std::abort();
  return 0;
}

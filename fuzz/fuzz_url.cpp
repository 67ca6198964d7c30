// URL parsing of any text: no crash, and parts that hold their shape.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "service/url.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane;
  std::u16string text(size / 2, u'\0');
  for (size_t i = 0; i < text.size(); ++i) {
    text[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
  }
  if (std::optional<ParsedUrl> url = ParseUrl(text)) {
    if (url->path.empty() || url->path[0] != u'/') std::abort();
    if (url->host.find(u'/') != std::u16string::npos) std::abort();
    if (url->host.find(u':') != std::u16string::npos) std::abort();
  } else if (text.size() >= 3 && text.find(u"://") != std::u16string::npos) {
    std::abort();
  }
  return 0;
}

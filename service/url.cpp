#include "service/url.h"

#include "base/leading_int.h"
#include "base/wide_text.h"

namespace orvane {

std::optional<ParsedUrl> ParseUrl(std::u16string_view url) {
  if (url.size() < 3) return std::nullopt;
  size_t schemeEnd = url.find(u"://");
  if (schemeEnd == std::u16string_view::npos) return std::nullopt;
  ParsedUrl parsed;
  parsed.secure = url.substr(0, schemeEnd) == u"https";
  parsed.port = parsed.secure ? 443 : 80;
  std::u16string_view rest = url.substr(schemeEnd + 3);
  size_t pathStart = rest.find(u'/');
  std::u16string_view hostPart = rest.substr(0, pathStart);
  parsed.path =
      pathStart == std::u16string_view::npos ? u"/" : std::u16string(rest.substr(pathStart));
  size_t colon = hostPart.find(u':');
  if (colon != std::u16string_view::npos) {
    parsed.port = ParseLeadingInt(hostPart.substr(colon + 1));
    hostPart = hostPart.substr(0, colon);
  }
  parsed.host = hostPart;
  return parsed;
}

bool ResolvePort(ParsedUrl& url) {
  if (url.port == 0) url.port = url.secure ? 443 : 80;
  return url.port > 0 && url.port <= 65535;
}

std::u16string PercentEncode(std::u16string_view text) {
  static constexpr char16_t kHex[] = u"0123456789ABCDEF";
  std::u16string out;
  for (unsigned char byte : ToUtf8(text)) {
    bool unreserved = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                      (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == '_' ||
                      byte == '~';
    if (unreserved) {
      out += static_cast<char16_t>(byte);
    } else {
      out += u'%';
      out += kHex[byte >> 4];
      out += kHex[byte & 0xF];
    }
  }
  return out;
}

}  // namespace orvane

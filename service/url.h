// Service addresses.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

struct ParsedUrl {
  std::u16string host;
  int32_t port = 0;
  std::u16string path;
  bool secure = false;
};

// "scheme://host[:port][/path]". Only the exact scheme "https" is secure (port 443 by
// default); any other scheme is plain (port 80). The path is "/" when none is given. The port
// is read like _wtoi: leading digits, 0 when there are none. Nullopt for texts shorter than three
// characters or without "://".
std::optional<ParsedUrl> ParseUrl(std::u16string_view url);

// Windows takes a 16-bit port, and port 0 stands for the scheme's default port there. Sets that
// default for port 0; false for a port no connection can use (negative or above 65535), which
// makes the address invalid rather than silently cut to 16 bits.
bool ResolvePort(ParsedUrl& url);

// Every UTF-8 byte except ASCII letters, digits and "-._~" as "%XX" (upper-case hex).
std::u16string PercentEncode(std::u16string_view text);

}  // namespace orvane

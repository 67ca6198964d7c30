// Redirects as the Windows HTTP service follows them by default, for stacks that must be told.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "service/url.h"

namespace orvane {

struct Redirect {
  ParsedUrl target;
  std::u16string method;
  bool keepsBody = false;         // only 307 and 308 repeat the request with its body
  bool keepsCredentials = false;  // the bearer token only goes back to the same host and port
};

// The next request after a reply with `status` and the absolute `location` it names, or
// nullopt when the reply is itself the answer: not a redirect status, no usable location, or a
// step down from HTTPS to plain HTTP (which WinHTTP refuses to follow, handing back the 3xx).
// 301, 302 and 303 turn a POST (any method but GET and HEAD, for 303) into a GET without body.
std::optional<Redirect> FollowRedirect(int status, const ParsedUrl& from,
                                       std::u16string_view method, std::u16string_view location);

// WinHTTP follows at most this many redirects of one request.
inline constexpr int kMaxRedirects = 10;

// Drops what the next request must not carry: the body with its content type, the bearer line.
void StripForRedirect(const Redirect& next, std::vector<std::u16string>& headerLines,
                      const std::string*& body);

}  // namespace orvane

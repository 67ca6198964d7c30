// The service client's HTTP stack on Windows: WinHTTP with the system's proxy settings.
#pragma once

#include "service/http.h"

namespace orvane {

// One session, connection and request per exchange, synchronous, the whole reply read into
// memory; the system's default timeouts and certificate checks. Redirects are followed the way
// the libcurl stack follows them (FollowRedirect), so the token never goes to another host.
class WinHttpClient final : public HttpClient {
 public:
  HttpExchange Exchange(const ParsedUrl& url, std::u16string_view method,
                        const std::vector<std::u16string>& headerLines,
                        const std::string* body) override;
};

}  // namespace orvane

// The service client's HTTP stack off Windows: libcurl, made to behave like WinHTTP's defaults.
#pragma once

#include <chrono>
#include <string>

#include "service/http.h"

namespace orvane {

// WinHTTP's default limits: 60 s to connect, 30 s for each send and each wait for reply data.
struct HttpTimeouts {
  std::chrono::milliseconds connect{60'000};
  std::chrono::seconds idle{30};  // longest the peer may stay silent once connected
};

// One easy handle per request, synchronous, the whole reply read into memory. Proxies come from
// the environment (http_proxy, https_proxy, no_proxy), libcurl's counterpart of the automatic
// proxy. Certificates are always verified; `caFile` adds a trusted certificate file (the test
// emulator's), it never switches verification off. Redirects are followed as WinHTTP follows
// them (see FollowRedirect).
class CurlHttpClient final : public HttpClient {
 public:
  explicit CurlHttpClient(std::string caFile = {}, HttpTimeouts timeouts = {});
  HttpExchange Exchange(const ParsedUrl& url, std::u16string_view method,
                        const std::vector<std::u16string>& headerLines,
                        const std::string* body) override;

 private:
  std::string caFile_;
  HttpTimeouts timeouts_;
};

}  // namespace orvane

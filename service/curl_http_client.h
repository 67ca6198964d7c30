// The service client's HTTP stack off Windows: libcurl.
#pragma once

#include <string>

#include "service/http.h"

namespace orvane {

// One easy handle per request, synchronous, the whole reply read into memory. Proxies come from
// the environment (http_proxy, https_proxy, no_proxy), libcurl's counterpart of the automatic
// proxy. Certificates are always verified; `caFile` adds a trusted certificate file (the test
// emulator's), it never switches verification off.
class CurlHttpClient final : public HttpClient {
 public:
  explicit CurlHttpClient(std::string caFile = {});
  HttpExchange Exchange(const ParsedUrl& url, std::u16string_view method,
                        const std::vector<std::u16string>& headerLines,
                        const std::string* body) override;

 private:
  std::string caFile_;
};

}  // namespace orvane

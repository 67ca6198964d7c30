// One synchronous HTTP(S) request to the service, and what it comes to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "service/url.h"

namespace orvane {

struct HttpResult {
  bool ok = false;      // a status from 200 to 299 was read
  int32_t status = 0;   // stays 0 when no status was read
  std::u16string text;  // the reply body, or an error message
};

// What the platform's HTTP stack reports for one exchange. The stages are those of the Windows
// HTTP service; another stack maps its failures onto the nearest stage and reports its own error
// code where the Windows one would be.
struct HttpExchange {
  enum class Outcome {
    kSessionFailed,     // no session could be opened
    kConnectFailed,     // no connection handle could be made
    kRequestFailed,     // no request handle could be made
    kSendFailed,        // sending, or waiting for the reply, failed (errorCode says why)
    kStatusUnreadable,  // a reply came but its status could not be read (errorCode says why)
    kReplied,           // status and body (as much as could be read) are set
  };
  Outcome outcome = Outcome::kSessionFailed;
  int32_t status = 0;
  std::string body;
  uint32_t errorCode = 0;
};

// The platform side: sends exactly the given header lines, in order, after its own host and
// user-agent lines, with the user agent "Orvane-Platform/2.0", and reads the whole reply.
class HttpClient {
 public:
  virtual ~HttpClient() = default;
  // `body` is null for a request without one.
  virtual HttpExchange Exchange(const ParsedUrl& url, std::u16string_view method,
                                const std::vector<std::u16string>& headerLines,
                                const std::string* body) = 0;
};

inline constexpr std::u16string_view kUserAgent = u"Orvane-Platform/2.0";

// Sends a request with the token as bearer credential. `extraHeaders` may hold several header
// lines separated by "\r\n". A body is sent as JSON. Never throws: every failure becomes a
// result with ok false and a message.
HttpResult PerformRequest(HttpClient& client, std::u16string_view url, std::u16string_view method,
                          std::u16string_view token, const std::string* body,
                          std::u16string_view extraHeaders);

}  // namespace orvane

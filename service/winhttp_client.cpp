#include "service/winhttp_client.h"

#include <windows.h>
#include <winhttp.h>

#include <memory>
#include <optional>

#include "base/wide_text.h"
#include "service/redirect.h"

namespace orvane {

namespace {

struct HandleCloser {
  void operator()(void* handle) const { WinHttpCloseHandle(handle); }
};
// Closed in reverse order of opening: request, connection, session.
using Handle = std::unique_ptr<void, HandleCloser>;

std::u16string LocationOf(HINTERNET request) {
  DWORD size = 0;
  WinHttpQueryHeaders(request, WINHTTP_QUERY_LOCATION, WINHTTP_HEADER_NAME_BY_INDEX,
                      WINHTTP_NO_OUTPUT_BUFFER, &size, WINHTTP_NO_HEADER_INDEX);
  if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || size == 0) return {};
  std::u16string location(size / sizeof(char16_t), u'\0');
  if (!WinHttpQueryHeaders(request, WINHTTP_QUERY_LOCATION, WINHTTP_HEADER_NAME_BY_INDEX,
                           location.data(), &size, WINHTTP_NO_HEADER_INDEX)) {
    return {};
  }
  location.resize(size / sizeof(char16_t));
  return location;
}

// One request on an open session; `location` is set when the reply names one.
HttpExchange RequestOnce(HINTERNET session, const ParsedUrl& url, const std::u16string& method,
                         const std::vector<std::u16string>& headerLines, const std::string* body,
                         std::u16string& location) {
  HttpExchange exchange;
  Handle connection(WinHttpConnect(session, ToWindowsText(url.host).c_str(),
                                   static_cast<INTERNET_PORT>(url.port), 0));
  if (!connection) {
    exchange.outcome = HttpExchange::Outcome::kConnectFailed;
    return exchange;
  }
  Handle request(WinHttpOpenRequest(
      connection.get(), ToWindowsText(method).c_str(), ToWindowsText(url.path).c_str(), nullptr,
      WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES, url.secure ? WINHTTP_FLAG_SECURE : 0));
  if (!request) {
    exchange.outcome = HttpExchange::Outcome::kRequestFailed;
    return exchange;
  }
  // Our own redirect rules decide where the token and the body may go next.
  DWORD redirects = WINHTTP_DISABLE_REDIRECTS;
  WinHttpSetOption(request.get(), WINHTTP_OPTION_DISABLE_FEATURE, &redirects, sizeof redirects);
  for (const std::u16string& line : headerLines) {
    std::u16string withEnd = line + u"\r\n";
    WinHttpAddRequestHeaders(request.get(), ToWindowsText(withEnd).c_str(), static_cast<DWORD>(-1L),
                             WINHTTP_ADDREQ_FLAG_ADD);
  }
  void* data = body != nullptr ? const_cast<char*>(body->data()) : WINHTTP_NO_REQUEST_DATA;
  DWORD length = body != nullptr ? static_cast<DWORD>(body->size()) : 0;
  if (!WinHttpSendRequest(request.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, data, length, length,
                          0) ||
      !WinHttpReceiveResponse(request.get(), nullptr)) {
    exchange.outcome = HttpExchange::Outcome::kSendFailed;
    exchange.errorCode = GetLastError();
    return exchange;
  }
  DWORD available = 0;
  while (WinHttpQueryDataAvailable(request.get(), &available) && available > 0) {
    size_t start = exchange.body.size();
    exchange.body.resize(start + available);
    DWORD read = 0;
    if (!WinHttpReadData(request.get(), exchange.body.data() + start, available, &read)) {
      exchange.body.resize(start);
      break;
    }
    exchange.body.resize(start + read);
  }
  DWORD status = 0;
  DWORD size = sizeof status;
  if (!WinHttpQueryHeaders(request.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                           WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX)) {
    exchange.outcome = HttpExchange::Outcome::kStatusUnreadable;
    exchange.errorCode = GetLastError();
    return exchange;
  }
  exchange.outcome = HttpExchange::Outcome::kReplied;
  exchange.status = static_cast<int32_t>(status);
  location = LocationOf(request.get());
  return exchange;
}

}  // namespace

HttpExchange WinHttpClient::Exchange(const ParsedUrl& url, std::u16string_view method,
                                     const std::vector<std::u16string>& headerLines,
                                     const std::string* body) {
  Handle session(WinHttpOpen(ToWindowsText(kUserAgent).c_str(), WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY,
                             WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, 0));
  if (!session) return {};  // kSessionFailed

  ParsedUrl current = url;
  std::u16string currentMethod(method);
  std::vector<std::u16string> lines = headerLines;
  for (int redirects = 0;; ++redirects) {
    std::u16string location;
    HttpExchange exchange =
        RequestOnce(session.get(), current, currentMethod, lines, body, location);
    if (exchange.outcome != HttpExchange::Outcome::kReplied) return exchange;
    std::optional<Redirect> next =
        FollowRedirect(exchange.status, current, currentMethod, location);
    if (!next) return exchange;
    if (redirects == kMaxRedirects) {
      return {HttpExchange::Outcome::kSendFailed, 0, {}, ERROR_WINHTTP_REDIRECT_FAILED};
    }
    StripForRedirect(*next, lines, body);
    current = next->target;
    currentMethod = next->method;
  }
}

}  // namespace orvane

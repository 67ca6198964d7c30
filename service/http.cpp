#include "service/http.h"

#include "base/wide_text.h"

namespace orvane {

namespace {

std::vector<std::u16string> HeaderLines(std::u16string_view token, std::u16string_view extra,
                                        bool hasBody) {
  std::vector<std::u16string> lines{u"Authorization: Bearer " + std::u16string(token)};
  while (!extra.empty()) {
    size_t end = extra.find(u"\r\n");
    std::u16string_view line = extra.substr(0, end);
    if (!line.empty()) lines.emplace_back(line);
    extra = end == std::u16string_view::npos ? std::u16string_view() : extra.substr(end + 2);
  }
  if (hasBody) lines.emplace_back(u"Content-Type: application/json; charset=utf-8");
  return lines;
}

HttpResult Interpret(const HttpExchange& exchange) {
  using Outcome = HttpExchange::Outcome;
  HttpResult result;
  switch (exchange.outcome) {
    case Outcome::kSessionFailed: result.text = u"WinHttpOpen failed"; break;
    case Outcome::kConnectFailed: result.text = u"WinHttpConnect failed"; break;
    case Outcome::kRequestFailed: result.text = u"WinHttpOpenRequest failed"; break;
    case Outcome::kSendFailed:
      result.text = u"HTTP request failed, GetLastError=" + Decimal(exchange.errorCode);
      break;
    case Outcome::kStatusUnreadable:
      result.text = u"Could not read HTTP status code, GetLastError=" + Decimal(exchange.errorCode);
      break;
    case Outcome::kReplied:
      result.status = exchange.status;
      result.ok = exchange.status >= 200 && exchange.status <= 299;
      result.text = FromUtf8(exchange.body);
      // Without a body a refusal would say nothing; with one, callers look for the service's
      // own words in it.
      if (!result.ok && result.text.empty()) {
        result.text = u"Server returned HTTP " + Decimal(exchange.status);
      }
      break;
  }
  return result;
}

}  // namespace

HttpResult PerformRequest(HttpClient& client, std::u16string_view url, std::u16string_view method,
                          std::u16string_view token, const std::string* body,
                          std::u16string_view extraHeaders) {
  std::optional<ParsedUrl> parsed = ParseUrl(url);
  if (!parsed || !ResolvePort(*parsed)) return {false, 0, u"Invalid URL: " + std::u16string(url)};
  HttpExchange exchange =
      client.Exchange(*parsed, method, HeaderLines(token, extraHeaders, body != nullptr), body);
  return Interpret(exchange);
}

}  // namespace orvane

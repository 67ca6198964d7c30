// The service client's rules, each checked against a scripted HTTP stack.
#include <gtest/gtest.h>

#include "base/leading_int.h"
#include "base/wide_text.h"
#include "service/account_status.h"
#include "service/http.h"
#include "service/redirect.h"
#include "service/url.h"

namespace orvane {
namespace {

TEST(ServiceUrl, ParsesSchemeHostPortAndPath) {
  const struct {
    const char16_t* url;
    bool valid;
    const char16_t* host;
    int port;
    const char16_t* path;
    bool secure;
  } cases[] = {
      {u"https://example:8443/x", true, u"example", 8443, u"/x", true},
      {u"http://h", true, u"h", 80, u"/", false},
      {u"HTTPS://h/", true, u"h", 80, u"/", false},  // the scheme test is case-sensitive
      {u"https://api.host/v1/base?q=1", true, u"api.host", 443, u"/v1/base?q=1", true},
      {u"ftp://files:21", true, u"files", 21, u"/", false},
      {u"http://h:abc/p", true, u"h", 0, u"/p", false},
      {u"http://h:12ab/p", true, u"h", 12, u"/p", false},
      {u"http://h:/p", true, u"h", 0, u"/p", false},
      {u"http://h:99999999999/", true, u"h", 2147483647, u"/", false},
      {u"http://:80/", true, u"", 80, u"/", false},
      {u"://", true, u"", 80, u"/", false},
      {u"ab", false, u"", 0, u"", false},
      {u"host.example/path", false, u"", 0, u"", false},
  };
  for (const auto& c : cases) {
    std::optional<ParsedUrl> parsed = ParseUrl(c.url);
    ASSERT_EQ(parsed.has_value(), c.valid) << ToUtf8(c.url);
    if (!parsed) continue;
    EXPECT_EQ(parsed->host, c.host);
    EXPECT_EQ(parsed->port, c.port);
    EXPECT_EQ(parsed->path, c.path);
    EXPECT_EQ(parsed->secure, c.secure);
  }
}

TEST(ServiceUrl, PercentEncodesEveryByteButTheUnreservedOnes) {
  const struct {
    std::u16string in, out;
  } cases[] = {
      {u"a b/\u00fc", u"a%20b%2F%C3%BC"},
      {u"Loft_interior-v2.1~final", u"Loft_interior-v2.1~final"},
      {u"", u""},
      {u"100%", u"100%25"},
      {u"\u6728\U0001F3E0", u"%E6%9C%A8%F0%9F%8F%A0"},
      {std::u16string{0xD800}, u"%EF%BF%BD"},  // a lone surrogate is sent as U+FFFD
  };
  for (const auto& c : cases)
    EXPECT_EQ(PercentEncode(c.in), c.out);
}

TEST(ServiceNumbers, LeadingIntegersReadLikeTheRuntime) {
  const struct {
    const char16_t* text;
    int32_t value;
  } cases[] = {
      {u"42", 42},
      {u"  -7x", -7},
      {u"+15", 15},
      {u"abc", 0},
      {u"", 0},
      {u"\t\n3", 3},
      {u"2147483647", 2147483647},
      {u"2147483648", 2147483647},
      {u"-2147483648", -2147483647 - 1},
      {u"-99999999999999999999", -2147483647 - 1},
      {u"- 5", 0},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ParseLeadingInt(c.text), c.value) << ToUtf8(c.text);
}

TEST(ServiceNumbers, IntegerMembersAreReadWithoutParsingTheJson) {
  const struct {
    const char16_t* text;
    const char16_t* key;
    bool found;
    int32_t value;
  } cases[] = {
      {u"{\"daily_limit\": 10}", u"daily_limit", true, 10},
      {u"{\"daily_limit\"\t:\t-3}", u"daily_limit", true, -3},
      {u"{\"daily_limit\":+4}", u"daily_limit", true, 4},
      {u"{\"daily_limit\": \"10\"}", u"daily_limit", false, 0},
      {u"{\"daily_limit\" 10}", u"daily_limit", false, 0},
      {u"{\"daily_limit\":}", u"daily_limit", false, 0},
      {u"{\"daily_limit\":\n10}", u"daily_limit", false, 0},  // only blanks and tabs are skipped
      {u"{\"a\":{\"conversions_left\":2},\"conversions_left\":9}", u"conversions_left", true, 2},
      {u"{\"my_daily_limit\":5}", u"daily_limit", false, 0},
      {u"{\"balance\":99999999999}", u"balance", true, 2147483647},
      {u"", u"balance", false, 0},
  };
  for (const auto& c : cases) {
    int32_t value = 0;
    EXPECT_EQ(ReadIntegerMember(c.text, c.key, value), c.found) << ToUtf8(c.text);
    EXPECT_EQ(value, c.value) << ToUtf8(c.text);
  }
}

TEST(ServiceBalance, TheQuotaLineFollowsLimitAndConversionsLeft) {
  const struct {
    int32_t limit, left;
    const char16_t* text;
  } cases[] = {
      {0, -1, u"Unlimited conversions"},
      {0, 5, u"Unlimited conversions"},
      {3, 0, u"Daily limit reached (3/day)"},
      {10, 7, u"7 of 10 conversions left today"},
      {10, -1, u""},
      {-1, 4, u""},
  };
  for (const auto& c : cases) {
    AccountStatus status;
    status.ok = true;
    status.dailyLimit = c.limit;
    status.conversionsLeft = c.left;
    EXPECT_EQ(BalanceText(status), c.text) << c.limit << "/" << c.left;
  }
}

// Answers every exchange with one scripted outcome and keeps what it was asked.
class ScriptedClient final : public HttpClient {
 public:
  explicit ScriptedClient(HttpExchange reply) : reply_(std::move(reply)) {}
  HttpExchange Exchange(const ParsedUrl& url, std::u16string_view method,
                        const std::vector<std::u16string>& headerLines,
                        const std::string* body) override {
    ++calls;
    lastUrl = url;
    lastMethod = method;
    lastHeaders = headerLines;
    lastBody = body != nullptr ? *body : "(none)";
    return reply_;
  }
  int calls = 0;
  ParsedUrl lastUrl;
  std::u16string lastMethod;
  std::vector<std::u16string> lastHeaders;
  std::string lastBody;

 private:
  HttpExchange reply_;
};

HttpExchange Replied(int32_t status, std::string body) {
  return {HttpExchange::Outcome::kReplied, status, std::move(body), 0};
}

HttpExchange Failed(HttpExchange::Outcome outcome, uint32_t errorCode = 0) {
  HttpExchange exchange;
  exchange.outcome = outcome;
  exchange.errorCode = errorCode;
  return exchange;
}

TEST(ServiceRequest, EveryOutcomeBecomesItsResult) {
  using Outcome = HttpExchange::Outcome;
  const struct {
    HttpExchange exchange;
    bool ok;
    int32_t status;
    std::u16string text;
  } cases[] = {
      {Failed(Outcome::kSessionFailed), false, 0, u"WinHttpOpen failed"},
      {Failed(Outcome::kConnectFailed), false, 0, u"WinHttpConnect failed"},
      {Failed(Outcome::kRequestFailed), false, 0, u"WinHttpOpenRequest failed"},
      {Failed(Outcome::kSendFailed, 12029), false, 0, u"HTTP request failed, GetLastError=12029"},
      {Failed(Outcome::kStatusUnreadable, 5), false, 0,
       u"Could not read HTTP status code, GetLastError=5"},
      {Replied(200, "{}"), true, 200, u"{}"},
      {Replied(204, ""), true, 204, u""},
      {Replied(299, "ok"), true, 299, u"ok"},
      {Replied(404, ""), false, 404, u"Server returned HTTP 404"},
      {Replied(401, "{\"error\":\"no\"}"), false, 401, u"{\"error\":\"no\"}"},
      {Replied(302, ""), false, 302, u"Server returned HTTP 302"},
      {Replied(200, "caf\xe9"), true, 200, u"caf\uFFFD"},
  };
  for (const auto& c : cases) {
    ScriptedClient client(c.exchange);
    HttpResult result = PerformRequest(client, u"https://h/api", u"GET", u"t", nullptr, u"");
    EXPECT_EQ(result.ok, c.ok) << ToUtf8(c.text);
    EXPECT_EQ(result.status, c.status) << ToUtf8(c.text);
    EXPECT_EQ(result.text, c.text);
  }
}

TEST(ServiceRequest, HeadersComeInTheirFixedOrder) {
  ScriptedClient client(Replied(200, ""));
  std::string body = "{\"objects\":[]}";
  PerformRequest(client, u"http://127.0.0.1:9/node/api/v1/jobs", u"POST", u"tok", &body,
                 u"X-Job-Name: a\r\nX-Blender-Target-Version: 5.1");
  EXPECT_EQ(client.lastHeaders,
            (std::vector<std::u16string>{u"Authorization: Bearer tok", u"X-Job-Name: a",
                                         u"X-Blender-Target-Version: 5.1",
                                         u"Content-Type: application/json; charset=utf-8"}));
  EXPECT_EQ(client.lastBody, body);

  PerformRequest(client, u"http://h/api/balance", u"GET", u"tok", nullptr, u"");
  EXPECT_EQ(client.lastHeaders, (std::vector<std::u16string>{u"Authorization: Bearer tok"}));
  EXPECT_EQ(client.lastBody, "(none)");
}

TEST(ServiceRequest, AnInvalidUrlSendsNothing) {
  // Windows connects to 16-bit ports only: a port beyond them is a wrong address, not a port cut
  // to 16 bits.
  for (std::u16string url :
       {u"localhost/api", u"http://h:65536/api", u"https://h:99999999/", u"http://h:-1/"}) {
    ScriptedClient client(Replied(200, ""));
    HttpResult result = PerformRequest(client, url, u"GET", u"t", nullptr, u"");
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.text, u"Invalid URL: " + url);
    EXPECT_EQ(client.calls, 0) << ToUtf8(url);
  }
}

TEST(ServiceRequest, PortZeroMeansTheSchemeDefault) {
  const struct {
    std::u16string url;
    int32_t port;
  } cases[] = {{u"http://h:/x", 80}, {u"https://h:0/x", 443}, {u"http://h:65535", 65535}};
  for (const auto& c : cases) {
    ScriptedClient client(Replied(200, ""));
    PerformRequest(client, c.url, u"GET", u"t", nullptr, u"");
    EXPECT_EQ(client.lastUrl.port, c.port) << ToUtf8(c.url);
  }
}

TEST(ServiceRedirect, FollowsAsWindowsDoes) {
  ParsedUrl secure = *ParseUrl(u"https://api.example/node/api/v1/jobs");
  ParsedUrl plain = *ParseUrl(u"http://api.example/node/api/v1/jobs");
  const struct {
    int status;
    const ParsedUrl& from;
    std::u16string method, location;
    bool follows;
    std::u16string nextMethod;
    bool keepsBody, keepsCredentials;
  } cases[] = {
      {301, secure, u"POST", u"https://api.example/v2/jobs", true, u"GET", false, true},
      {302, secure, u"POST", u"https://api.example/v2/jobs", true, u"GET", false, true},
      {303, secure, u"POST", u"https://api.example/v2/jobs", true, u"GET", false, true},
      {303, secure, u"PUT", u"https://api.example/v2/jobs", true, u"GET", false, true},
      {302, secure, u"GET", u"https://api.example/v2", true, u"GET", false, true},
      {307, secure, u"POST", u"https://api.example/v2/jobs", true, u"POST", true, true},
      {308, secure, u"POST", u"https://API.example/v2/jobs", true, u"POST", true, true},
      {307, plain, u"POST", u"https://api.example/v2/jobs", true, u"POST", true, false},
      {302, plain, u"GET", u"http://elsewhere.example/", true, u"GET", false, false},
      {302, secure, u"POST", u"http://api.example/v2/jobs", false, u"", false, false},
      {308, secure, u"POST", u"http://api.example/v2/jobs", false, u"", false, false},
      {302, secure, u"POST", u"", false, u"", false, false},
      {302, secure, u"POST", u"https://api.example:70000/", false, u"", false, false},
      {300, secure, u"GET", u"https://api.example/v2", false, u"", false, false},
      {304, secure, u"GET", u"https://api.example/v2", false, u"", false, false},
  };
  for (const auto& c : cases) {
    std::optional<Redirect> next = FollowRedirect(c.status, c.from, c.method, c.location);
    SCOPED_TRACE(std::to_string(c.status) + " " + ToUtf8(c.method) + " " + ToUtf8(c.location));
    ASSERT_EQ(next.has_value(), c.follows);
    if (!next) continue;
    EXPECT_EQ(next->method, c.nextMethod);
    EXPECT_EQ(next->keepsBody, c.keepsBody);
    EXPECT_EQ(next->keepsCredentials, c.keepsCredentials);
  }
}

TEST(ServiceAccount, TheServiceWordsForABadTokenDecideBeforeTheStatus) {
  const struct {
    HttpExchange exchange;
    bool ok;
    std::u16string error;
    int32_t limit, left;
  } cases[] = {
      {Replied(200, "{\"balance\":5,\"daily_limit\":10,\"conversions_left\":7}"), true, u"", 10, 7},
      {Replied(200, "{\"success\":true}"), true, u"", -1, -1},
      {Replied(200, "{\"warning\":\"invalid token format\"}"), false, u"invalid_token", -1, -1},
      {Replied(401, "{\"error\":\"missing or invalid token\"}"), false, u"invalid_token", -1, -1},
      {Replied(401, "Invalid Token"), false, u"Invalid Token", -1, -1},  // case-sensitive
      {Replied(500, "{\"error\":\"db down\"}"), false, u"{\"error\":\"db down\"}", -1, -1},
      // The transport has already put words to an empty refusal.
      {Replied(503, ""), false, u"Server returned HTTP 503", -1, -1},
      {Failed(HttpExchange::Outcome::kSendFailed, 7), false, u"HTTP request failed, GetLastError=7",
       -1, -1},
  };
  for (const auto& c : cases) {
    ScriptedClient client(c.exchange);
    AccountStatus status = QueryAccountStatus(client, u"http://h", u"tok");
    EXPECT_EQ(status.ok, c.ok) << ToUtf8(c.error);
    EXPECT_EQ(status.error, c.error);
    EXPECT_EQ(status.dailyLimit, c.limit) << ToUtf8(c.error);
    EXPECT_EQ(status.conversionsLeft, c.left) << ToUtf8(c.error);
    EXPECT_EQ(client.lastMethod, u"GET");
    EXPECT_EQ(client.lastUrl.path, u"/api/balance");
  }
}

TEST(ServiceAccount, AnEmptyTokenIsRefusedWithoutARequest) {
  ScriptedClient client(Replied(200, "{}"));
  AccountStatus status = QueryAccountStatus(client, u"http://h", u"");
  EXPECT_FALSE(status.ok);
  EXPECT_EQ(status.error, u"token_empty");
  EXPECT_EQ(client.calls, 0);
}

}  // namespace
}  // namespace orvane

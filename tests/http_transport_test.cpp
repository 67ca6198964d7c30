// The libcurl stack over real loopback sockets against a server that breaks replies off
// anywhere, stays silent or redirects: each must end as the Windows HTTP service would end it.
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <filesystem>

#include "base/wide_text.h"
#include "emulator/self_signed.h"
#include "service/curl_http_client.h"
#include "service/http.h"
#include "service/redirect.h"
#include "tests/raw_http_server.h"

namespace orvane {
namespace {

using testing::RawHttpServer;
using testing::RequestPath;
using testing::ScriptedReply;
using End = ScriptedReply::End;

constexpr char16_t kFailure[] = u"HTTP request failed, GetLastError=";

HttpResult Get(const RawHttpServer& server, HttpTimeouts timeouts = {}) {
  CurlHttpClient client({}, timeouts);
  return PerformRequest(client, FromUtf8(server.Url("/api/balance")), u"GET", u"tok", nullptr, u"");
}

bool IsTransportFailure(const HttpResult& result) {
  return !result.ok && result.status == 0 && result.text.starts_with(kFailure);
}

TEST(HttpTransport, ARepliesCutOffBeforeItsHeadersEndIsAFailure) {
  const std::string bigHeader = "X-Big: " + std::string(150 * 1024, 'b') + "\r\n";
  std::string manyHeaders;
  for (int i = 0; manyHeaders.size() < (1 << 20); ++i)
    manyHeaders += "X-H" + std::to_string(i) + ": " + std::string(1000, 'h') + "\r\n";
  const struct {
    const char* label;
    std::string bytes;
    End end;
  } cases[] = {
      {"status line, then closed", "HTTP/1.1 200 OK\r\n", End::kClose},
      {"status line, then reset", "HTTP/1.1 200 OK\r\n", End::kReset},
      {"refusal's status line, then reset", "HTTP/1.1 401 Unauthorized\r\n", End::kReset},
      {"inside a header", "HTTP/1.1 200 OK\r\nContent-Len", End::kClose},
      {"before the blank line", "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n", End::kClose},
      {"half the blank line", "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r", End::kClose},
      {"nothing at all", "", End::kClose},
      {"a header over the limit", "HTTP/1.1 200 OK\r\n" + bigHeader + "\r\n{}", End::kClose},
      {"a megabyte of headers", "HTTP/1.1 200 OK\r\n" + manyHeaders + "\r\n{}", End::kClose},
  };
  for (const auto& c : cases) {
    RawHttpServer server([&](const std::string&) { return ScriptedReply{c.bytes, c.end}; });
    HttpResult result = Get(server);
    EXPECT_TRUE(IsTransportFailure(result))
        << c.label << ": ok " << result.ok << ", status " << result.status << ", "
        << ToUtf8(result.text).substr(0, 80);
  }
}

TEST(HttpTransport, ABodyCutOffAfterCompleteHeadersKeepsWhatArrived) {
  const struct {
    const char* label;
    std::string bytes;
    End end;
    int32_t status;
    std::u16string text;
  } cases[] = {
      {"no body of the announced length", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n",
       End::kClose, 200, u""},
      {"inside the body", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{\"a\":", End::kReset, 200,
       u"{\"a\":"},
      {"body until close", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n{\"a\":1}", End::kClose,
       200, u"{\"a\":1}"},
      {"inside a chunk",
       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\n{\"a\"\r\n9\r\n:1", End::kClose,
       200, u"{\"a\":1"},
      {"a refusal's body cut off", "HTTP/1.1 503 Busy\r\nContent-Length: 40\r\n\r\nbusy",
       End::kClose, 503, u"busy"},
      {"a refusal without body", "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n", End::kClose,
       404, u"Server returned HTTP 404"},
  };
  for (const auto& c : cases) {
    RawHttpServer server([&](const std::string&) { return ScriptedReply{c.bytes, c.end}; });
    HttpResult result = Get(server);
    EXPECT_EQ(result.status, c.status) << c.label;
    EXPECT_EQ(result.ok, c.status == 200) << c.label;
    EXPECT_EQ(result.text, c.text) << c.label;
  }
}

// Wherever a reply breaks off, the result is the whole reply or a failure; a success that read
// less than the complete headers is never possible.
TEST(HttpTransport, AReplyCutAnywhereIsWholeOrAFailure) {
  const std::string samples[] = {
      "HTTP/1.1 201 Created\r\nContent-Type: application/json\r\nContent-Length: 16\r\n\r\n"
      "{\"job_id\":\"j-1\"}",
      "HTTP/1.1 201 Created\r\nTransfer-Encoding: chunked\r\n\r\n"
      "6\r\n{\"job_\r\na\r\nid\":\"j-1\"}\r\n0\r\n\r\n",
  };
  for (const std::string& sample : samples) {
    size_t headEnd = sample.find("\r\n\r\n") + 4;
    for (size_t cut = 0; cut <= sample.size(); ++cut) {
      RawHttpServer server([&](const std::string&) {
        return ScriptedReply{sample.substr(0, cut), End::kClose};
      });
      HttpResult result = Get(server);
      SCOPED_TRACE("cut after " + std::to_string(cut) + " bytes");
      if (cut < headEnd) {
        EXPECT_TRUE(IsTransportFailure(result)) << ToUtf8(result.text);
      } else {
        EXPECT_EQ(result.status, 201);
        EXPECT_TRUE(result.ok);
        EXPECT_TRUE(std::u16string(u"{\"job_id\":\"j-1\"}").starts_with(result.text))
            << ToUtf8(result.text);
      }
      if (cut == sample.size()) {
        EXPECT_EQ(result.text, u"{\"job_id\":\"j-1\"}");
      }
    }
  }
}

TEST(HttpTransport, ASilentServerIsGivenUpAfterTheIdleTimeout) {
  const HttpTimeouts shortened{std::chrono::milliseconds(2000), std::chrono::seconds(1)};
  const struct {
    const char* label;
    std::string bytes;
    bool ok;
  } cases[] = {
      {"accepts and never answers", "", false},
      {"stops inside the headers", "HTTP/1.1 200 OK\r\n", false},
      {"stops inside the body", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n{\"a\"", true},
  };
  for (const auto& c : cases) {
    RawHttpServer server([&](const std::string&) { return ScriptedReply{c.bytes, End::kHang}; });
    auto start = std::chrono::steady_clock::now();
    HttpResult result = Get(server, shortened);
    auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_LT(waited, std::chrono::seconds(10)) << c.label;
    EXPECT_EQ(result.ok, c.ok) << c.label;
    if (c.ok) {
      EXPECT_EQ(result.text, u"{\"a\"") << c.label;
    } else {
      EXPECT_EQ(result.text, std::u16string(kFailure) + u"28") << c.label;  // libcurl's timeout
    }
  }
}

// "/start" redirects with the status the test names; "/final" says what it was sent.
std::string Echo(const std::string& request) {
  size_t headEnd = request.find("\r\n\r\n") + 4;
  std::string said =
      request.substr(0, request.find(' ')) + " body=" + std::to_string(request.size() - headEnd) +
      (request.find("\r\nAuthorization: Bearer tok\r\n") != std::string::npos ? " token" : "") +
      (request.find("\r\nContent-Type:") != std::string::npos ? " json" : "") +
      (request.find("\r\nX-Job-Name: j\r\n") != std::string::npos ? " job" : "");
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(said.size()) + "\r\n\r\n" + said;
}

TEST(HttpTransport, RedirectsAreFollowedLikeWindowsFollowsThem) {
  const struct {
    int status;
    const char* target;  // host the redirect names; "final" path on the same server
    std::u16string seen;
  } cases[] = {
      {301, "127.0.0.1", u"GET body=0 token job"},
      {302, "127.0.0.1", u"GET body=0 token job"},
      {303, "127.0.0.1", u"GET body=0 token job"},
      {307, "127.0.0.1", u"POST body=11 token json job"},
      {308, "127.0.0.1", u"POST body=11 token json job"},
      // Another host never receives the user's token.
      {307, "localhost", u"POST body=11 json job"},
  };
  for (const auto& c : cases) {
    int port = 0;
    RawHttpServer server([&](const std::string& request) {
      if (RequestPath(request) == "/final") return ScriptedReply{Echo(request)};
      return ScriptedReply{"HTTP/1.1 " + std::to_string(c.status) + " Moved\r\nLocation: http://" +
                           c.target + ":" + std::to_string(port) +
                           "/final\r\nContent-Length: 0\r\n\r\n"};
    });
    port = server.port();
    CurlHttpClient client;
    std::string body = "{\"job\":\"j\"}";
    HttpResult result = PerformRequest(client, FromUtf8(server.Url("/start")), u"POST", u"tok",
                                       &body, u"X-Job-Name: j");
    EXPECT_TRUE(result.ok) << c.status;
    EXPECT_EQ(result.text, c.seen) << c.status;
    EXPECT_EQ(server.requests().size(), 2u);
  }
}

TEST(HttpTransport, EndlessRedirectsEndAfterTenHops) {
  RawHttpServer server([](const std::string&) {
    return ScriptedReply{"HTTP/1.1 302 Found\r\nLocation: /again\r\nContent-Length: 0\r\n\r\n"};
  });
  HttpResult result = Get(server);
  EXPECT_TRUE(IsTransportFailure(result)) << ToUtf8(result.text);
  EXPECT_EQ(server.requests().size(), static_cast<size_t>(kMaxRedirects + 1));
}

TEST(HttpTransport, ARedirectFromHttpsToHttpIsHandedBackNotFollowed) {
  RawHttpServer plain([](const std::string& request) { return ScriptedReply{Echo(request)}; });
  auto folder = std::filesystem::temp_directory_path() / "orvane-redirect-tls";
  std::filesystem::create_directories(folder);
  std::string error;
  ASSERT_TRUE(emulator::WriteSelfSignedCertificate(folder / "cert.pem", folder / "key.pem", error))
      << error;
  httplib::SSLServer secure((folder / "cert.pem").c_str(), (folder / "key.pem").c_str());
  secure.Post("/node/api/v1/jobs", [&](const httplib::Request&, httplib::Response& response) {
    response.status = 302;
    response.set_header("Location", plain.Url("/final"));
  });
  int port = secure.bind_to_any_port("127.0.0.1");
  std::thread serving([&] { secure.listen_after_bind(); });  // the socket already listens

  CurlHttpClient client((folder / "cert.pem").string());
  std::string body = "{}";
  HttpResult result = PerformRequest(
      client, u"https://127.0.0.1:" + AsciiToWide(std::to_string(port)) + u"/node/api/v1/jobs",
      u"POST", u"tok", &body, u"X-Job-Name: j");
  secure.stop();
  serving.join();
  std::filesystem::remove_all(folder);

  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.status, 302);
  EXPECT_EQ(result.text, u"Server returned HTTP 302");
  EXPECT_TRUE(plain.requests().empty());
}

}  // namespace
}  // namespace orvane

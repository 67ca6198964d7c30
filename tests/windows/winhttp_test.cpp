// WinHTTP against the service emulator on loopback: the same outcomes as the libcurl stack, with
// Windows' own error codes.
#include <gtest/gtest.h>
#include <windows.h>

#include "base/wide_text.h"
#include "host/local_file_system.h"
#include "service/account_status.h"
#include "service/job_submission.h"
#include "service/winhttp_client.h"
#include "tests/temp_folder.h"
#include "tests/windows/service_under_test.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::Service;

class WinHttpAgainstEmulator : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Service().missing.empty())
        << "run through tools/test windows, which starts the emulator; missing: "
        << Service().missing;
  }
  HttpResult Get(const std::u16string& url, const std::u16string& token) {
    return PerformRequest(client_, url, u"GET", token, nullptr, u"");
  }
  WinHttpClient client_;
};

TEST_F(WinHttpAgainstEmulator, EveryTransportOutcome) {
  std::u16string balance = Service().url + u"/api/balance";
  const struct {
    std::u16string url, token;
    bool ok;
    int32_t status;
    std::u16string text;
    bool prefixOnly;
  } cases[] = {
      {balance, u"good", true, 200,
       u"{\"success\":true,\"balance\":5,\"daily_limit\":10,\"conversions_left\":7}", false},
      {balance, u"empty", true, 200, u"", false},
      {Service().url + u"/nowhere", u"good", false, 404, u"Server returned HTTP 404", false},
      {balance, u"stranger", false, 401,
       u"{\"success\":false,\"error\":\"missing or invalid token\"}", false},
      {balance, u"e503", false, 503, u"Server returned HTTP 503", false},
      // A reply that breaks off after its headers keeps what arrived.
      {balance, u"drop", true, 200, u"{\"success\":true,\"balance\":5", true},
      // One that breaks off before its headers end is no reply at all.
      {balance, u"cut", false, 0, u"HTTP request failed, GetLastError=", true},
      // Port 9 (discard) has no listener on loopback: ERROR_WINHTTP_CANNOT_CONNECT.
      {u"http://127.0.0.1:9/api/balance", u"good", false, 0,
       u"HTTP request failed, GetLastError=12029", false},
      {u"http://no-such-host.invalid/api/balance", u"good", false, 0,
       u"HTTP request failed, GetLastError=12007", false},
  };
  for (const auto& c : cases) {
    if (c.token == u"cut" && testing::RunningUnderWine()) continue;
    HttpResult result = Get(c.url, c.token);
    EXPECT_EQ(result.ok, c.ok) << ToUtf8(c.token) << ": " << ToUtf8(result.text);
    EXPECT_EQ(result.status, c.status) << ToUtf8(c.token);
    if (c.prefixOnly) {
      EXPECT_EQ(result.text.rfind(c.text, 0), 0u) << ToUtf8(result.text.substr(0, 80));
    } else {
      EXPECT_EQ(result.text, c.text) << ToUtf8(c.token);
    }
  }
}

TEST_F(WinHttpAgainstEmulator, AJobArrivesWithOurHeadersInOrderAndItsBytesUnchanged) {
  testing::TempFolder folder("orvane-winhttp");
  std::string package = "{\n  \"exporter\": \"Velmora\",\n  \"objects\": [\"\xc3\xbc\"]\n}";
  folder.Write("1.json", package);
  host::LocalFileSystem files;
  std::u16string job =
      u"Loft interior \u00fc_" + AsciiToWide(std::to_string(GetCurrentProcessId()));
  HttpResult result = SubmitJob(client_, files, Service().url, (folder.path / "1.json").u16string(),
                                u"unlimited", job, u"5.1");
  ASSERT_TRUE(result.ok) << ToUtf8(result.text);
  EXPECT_EQ(result.text.rfind(u"{\"success\":true,\"job_id\":\"job-", 0), 0u);

  std::string encoded = ToUtf8(PercentEncode(job));
  EXPECT_EQ(encoded.rfind("Loft%20interior%20%C3%BC_", 0), 0u);
  auto stored = testing::StoredJob(Service().data, encoded);
  ASSERT_TRUE(stored) << "no stored job named " << encoded;
  EXPECT_EQ(testing::FileContents(*stored / "body.json"), package);
  // WinHTTP adds its own lines (host, connection, length); ours keep their order among them.
  std::string head = testing::FileContents(*stored / "head.txt");
  EXPECT_EQ(head.rfind("POST /node/api/v1/jobs HTTP/1.1\r\n", 0), 0u) << head;
  size_t at = 0;
  for (std::string line : {std::string("Authorization: Bearer unlimited"), "X-Job-Name: " + encoded,
                           std::string("X-Blender-Target-Version: 5.1"),
                           std::string("Content-Type: application/json; charset=utf-8")}) {
    size_t found = head.find("\r\n" + line + "\r\n");
    ASSERT_NE(found, std::string::npos) << line << "\n" << head;
    EXPECT_GT(found, at) << line;
    at = found;
  }
  EXPECT_NE(head.find("\r\nUser-Agent: Orvane-Platform/2.0\r\n"), std::string::npos) << head;
}

TEST_F(WinHttpAgainstEmulator, AccountTextsAndRefusals) {
  EXPECT_EQ(BalanceText(QueryAccountStatus(client_, Service().url, u"good")),
            u"7 of 10 conversions left today");
  EXPECT_EQ(QueryAccountStatus(client_, Service().url, u"stranger").error, u"invalid_token");
  testing::TempFolder folder("orvane-winhttp-refusal");
  folder.Write("1.json", "{}");
  host::LocalFileSystem files;
  HttpResult broke = SubmitJob(client_, files, Service().url, (folder.path / "1.json").u16string(),
                               u"broke", u"job", u"5.2");
  EXPECT_EQ(broke.status, 402);
  EXPECT_NE(broke.text.find(u"insufficient balance"), std::u16string::npos);
}

// Certificates are checked as the system checks them: a trusted one passes, the emulator's own
// self-signed one is refused.
TEST_F(WinHttpAgainstEmulator, HttpsVerifiesTheCertificate) {
  ASSERT_TRUE(testing::TrustCertificate(Service().certificate));
  HttpResult trusted = Get(Service().tlsUrl + u"/api/balance", u"good");
  EXPECT_TRUE(trusted.ok) << ToUtf8(trusted.text) << "; "
                          << testing::ChainReport(Service().certificate, L"localhost");
  EXPECT_EQ(trusted.status, 200);
  // ERROR_WINHTTP_SECURE_FAILURE (12175) on Windows; wine reports a secure channel error.
  HttpResult untrusted = Get(Service().untrustedUrl + u"/api/balance", u"good");
  EXPECT_FALSE(untrusted.ok);
  EXPECT_EQ(untrusted.status, 0);
  EXPECT_EQ(untrusted.text.rfind(u"HTTP request failed, GetLastError=121", 0), 0u)
      << ToUtf8(untrusted.text);
}

}  // namespace
}  // namespace orvane

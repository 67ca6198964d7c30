// The service client against the emulator, over real loopback sockets.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/wide_text.h"
#include "cli/commands.h"
#include "emulator/service_emulator.h"
#include "host/local_file_system.h"
#include "service/account_status.h"
#include "service/curl_http_client.h"
#include "service/job_submission.h"
#include "service/service_config.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using emulator::Account;
using emulator::Fault;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// A port nothing listens on: bound once, then released.
int UnusedPort() {
  int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
  socklen_t length = sizeof address;
  getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
  close(socket);
  return ntohs(address.sin_port);
}

class ServiceOverSockets : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("no_proxy", "127.0.0.1,localhost", 1);  // a proxy in the environment must not interfere
    data_ = fs::temp_directory_path() /
            ("orvane-emulator-" + std::to_string(::getpid()) + "-" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(data_);
    emulator::EmulatorOptions options;
    options.dataFolder = data_;
    options.slowMs = 300;
    options.accounts = {
        {"good", 5, 10, 7},
        {"limit", 5, 3, 0},
        {"unlimited", 50, 0, -1},
        {"broke", 0, 10, 10},
        {"empty", 5, 0, -1, Fault::kEmpty200},
        {"e503", 5, 0, -1, Fault::kStatus503},
        {"e500", 5, 0, -1, Fault::kStatus500},
        {"drop", 5, 10, 4, Fault::kDrop},
        {"cut", 5, 10, 4, Fault::kCutHeaders},
        {"slow", 5, 10, 4, Fault::kSlow},
        {"nonutf8", 5, 10, 4, Fault::kNonUtf8},
        {"large", 5, 10, 4, Fault::kLargeBody},
    };
    options.https = UseHttps();
    emulator_ = std::make_unique<emulator::ServiceEmulator>(options);
    std::string error;
    ASSERT_TRUE(emulator_->Start(error)) << error;
    base_ = FromUtf8(emulator_->BaseUrl());
    package_ = data_ / "1.json";
    std::ofstream(package_, std::ios::binary)
        << "{\n  \"exporter\": \"Velmora\",\n  \"objects\": []\n}";
  }
  void TearDown() override {
    emulator_.reset();
    fs::remove_all(data_);
  }
  virtual bool UseHttps() const { return false; }

  HttpResult Get(const std::u16string& url, const std::u16string& token) {
    return PerformRequest(client_, url, u"GET", token, nullptr, u"");
  }
  HttpResult Submit(const std::u16string& token, const std::u16string& job,
                    const std::u16string& target) {
    return SubmitJob(client_, files_, base_, package_.u16string(), token, job, target);
  }

  fs::path data_, package_;
  std::unique_ptr<emulator::ServiceEmulator> emulator_;
  std::u16string base_;
  CurlHttpClient client_;
  host::LocalFileSystem files_;
};

TEST_F(ServiceOverSockets, EveryTransportOutcome) {
  std::u16string balance = base_ + u"/api/balance";
  const struct {
    std::u16string url, token;
    bool ok;
    int32_t status;
    std::u16string text;  // exact, or a prefix when `prefixOnly`
    bool prefixOnly;
  } cases[] = {
      {balance, u"good", true, 200,
       u"{\"success\":true,\"balance\":5,\"daily_limit\":10,\"conversions_left\":7}", false},
      {balance, u"empty", true, 200, u"", false},
      {base_ + u"/nowhere", u"good", false, 404, u"Server returned HTTP 404", false},
      {balance, u"stranger", false, 401,
       u"{\"success\":false,\"error\":\"missing or invalid token\"}", false},
      {balance, u"e503", false, 503, u"Server returned HTTP 503", false},
      {balance, u"e500", false, 500, u"Server returned HTTP 500", false},
      // A reply that breaks off after its headers keeps what arrived, as on Windows.
      {balance, u"drop", true, 200, u"{\"success\":true,\"balance\":5", true},
      // One that breaks off before its headers end is no reply at all.
      {balance, u"cut", false, 0, u"HTTP request failed, GetLastError=", true},
      {u"http://127.0.0.1:" + AsciiToWide(std::to_string(UnusedPort())) + u"/api/balance", u"good",
       false, 0, u"HTTP request failed, GetLastError=7", false},
  };
  for (const auto& c : cases) {
    HttpResult result = Get(c.url, c.token);
    EXPECT_EQ(result.ok, c.ok) << ToUtf8(c.token);
    EXPECT_EQ(result.status, c.status) << ToUtf8(c.token);
    if (c.prefixOnly) {
      EXPECT_EQ(result.text.rfind(c.text, 0), 0u) << ToUtf8(result.text.substr(0, 80));
    } else {
      EXPECT_EQ(result.text, c.text) << ToUtf8(c.token);
    }
  }
  HttpResult dropped = Get(balance, u"drop");
  EXPECT_LT(dropped.text.size(), 64u << 10);  // the whole reply would be longer
}

TEST_F(ServiceOverSockets, AccountStatusAndBalanceTexts) {
  const struct {
    std::u16string token;
    bool ok;
    std::u16string balanceText, error;
  } cases[] = {
      {u"good", true, u"7 of 10 conversions left today", u""},
      {u"limit", true, u"Daily limit reached (3/day)", u""},
      {u"unlimited", true, u"Unlimited conversions", u""},
      {u"stranger", false, u"", u"invalid_token"},
      {u"", false, u"", u"token_empty"},
      {u"e503", false, u"", u"Server returned HTTP 503"},
      {u"slow", true, u"4 of 10 conversions left today", u""},
      {u"nonutf8", true, u"4 of 10 conversions left today", u""},
      {u"large", true, u"4 of 10 conversions left today", u""},
  };
  for (const auto& c : cases) {
    AccountStatus status = QueryAccountStatus(client_, base_, c.token);
    EXPECT_EQ(status.ok, c.ok) << ToUtf8(c.token);
    EXPECT_EQ(status.error, c.error) << ToUtf8(c.token);
    if (status.ok) {
      EXPECT_EQ(BalanceText(status), c.balanceText) << ToUtf8(c.token);
    }
  }
}

TEST_F(ServiceOverSockets, OddRepliesAreReadWhole) {
  auto started = std::chrono::steady_clock::now();
  HttpResult slow = Get(base_ + u"/api/balance", u"slow");
  EXPECT_TRUE(slow.ok);
  EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::milliseconds(300));
  HttpResult odd = Get(base_ + u"/api/balance", u"nonutf8");
  EXPECT_NE(odd.text.find(u"caf\uFFFD \uFFFD\uFFFD"), std::u16string::npos);
  HttpResult large = Get(base_ + u"/api/balance", u"large");
  EXPECT_GT(large.text.size(), 16u << 20);
}

TEST_F(ServiceOverSockets, AJobArrivesWithItsHeadersInOrderAndItsBytesUnchanged) {
  HttpResult result = Submit(u"good", u"Loft interior \u00fc_3kq9x0ab", u"5.2");
  ASSERT_TRUE(result.ok) << ToUtf8(result.text);
  EXPECT_EQ(result.text, u"{\"success\":true,\"job_id\":\"job-000001\"}");
  std::string package = ReadFile(package_);
  std::string port = emulator_->BaseUrl().substr(emulator_->BaseUrl().rfind(':') + 1);
  EXPECT_EQ(emulator_->Requests().back().head,
            "POST /node/api/v1/jobs HTTP/1.1\r\n"
            "Host: 127.0.0.1:" +
                port +
                "\r\n"
                "User-Agent: Orvane-Platform/2.0\r\n"
                "Authorization: Bearer good\r\n"
                "X-Job-Name: Loft%20interior%20%C3%BC_3kq9x0ab\r\n"
                "X-Blender-Target-Version: 5.2\r\n"
                "Content-Type: application/json; charset=utf-8\r\n"
                "Content-Length: " +
                std::to_string(package.size()) + "\r\n\r\n");
  EXPECT_EQ(ReadFile(data_ / "jobs" / "000001" / "body.json"), package);
  EXPECT_EQ(ReadFile(data_ / "jobs" / "000001" / "head.txt"), emulator_->Requests().back().head);
  // The accepted job used one of the day's conversions.
  EXPECT_EQ(BalanceText(QueryAccountStatus(client_, base_, u"good")),
            u"6 of 10 conversions left today");
}

TEST_F(ServiceOverSockets, OnlyTargetsFiveOneAndFiveTwoNameAVersion) {
  const struct {
    std::u16string target;
    std::string versionLine;
  } cases[] = {{u"5.1", "X-Blender-Target-Version: 5.1\r\n"},
               {u"5.2", "X-Blender-Target-Version: 5.2\r\n"},
               {u"5.3", ""},
               {u"", ""}};
  for (const auto& c : cases) {
    ASSERT_TRUE(Submit(u"unlimited", u"job", c.target).ok);
    std::string head = emulator_->Requests().back().head;
    bool hasVersion = head.find("X-Blender-Target-Version") != std::string::npos;
    EXPECT_EQ(hasVersion, !c.versionLine.empty()) << ToUtf8(c.target);
    if (hasVersion) {
      EXPECT_NE(head.find(c.versionLine), std::string::npos);
    }
  }
}

TEST_F(ServiceOverSockets, RefusalsCarryTheServiceWords) {
  HttpResult broke = Submit(u"broke", u"job", u"5.2");
  EXPECT_FALSE(broke.ok);
  EXPECT_EQ(broke.status, 402);
  EXPECT_NE(broke.text.find(u"insufficient balance"), std::u16string::npos);
  HttpResult limit = Submit(u"limit", u"job", u"5.2");
  EXPECT_EQ(limit.status, 429);
  HttpResult stranger = Submit(u"stranger", u"job", u"5.2");
  EXPECT_EQ(stranger.status, 401);
  EXPECT_FALSE(fs::exists(data_ / "jobs" / "000001"));
}

TEST_F(ServiceOverSockets, AMissingPackageMakesNoRequestAtAll) {
  size_t before = emulator_->Requests().size();
  std::u16string missing = (data_ / "gone" / "1.json").u16string();
  HttpResult result = SubmitJob(client_, files_, base_, missing, u"good", u"job", u"5.2");
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, u"Cannot read JSON file: " + missing);
  EXPECT_EQ(emulator_->Requests().size(), before);
  EXPECT_FALSE(fs::exists(data_ / "requests.log"));  // the emulator logs every request it gets
}

TEST_F(ServiceOverSockets, TheCommandsShowWhatThePanelWould) {
  std::string service = emulator_->BaseUrl();
  const struct {
    std::vector<std::string> args;
    int exitCode;
    std::string out, err;
  } cases[] = {
      {{"balance", "--service", service, "--token", " good "},
       cli::kExitOk,
       "7 of 10 conversions left today\n",
       ""},
      {{"balance", "--service", service, "--token", "stranger"},
       cli::kExitFailure,
       "",
       "Invalid token.\nUpdate your token at " + ToUtf8(kDashboardUrl) + "\n"},
      {{"balance", "--service", service, "--token", "e503"},
       cli::kExitFailure,
       "",
       "Connection error:\nServer returned HTTP 503\n"},
      {{"submit", "--service", service, "--token", "good", "--job", "desk", package_.string()},
       cli::kExitOk,
       "HTTP 200\n{\"success\":true,\"job_id\":\"job-000001\"}\n",
       ""},
      {{"submit", "--service", service, "--token", "broke", "--job", "desk", "--target", "5.1",
        package_.string()},
       cli::kExitFailure,
       "",
       "HTTP 402\n{\"success\":false,\"error\":\"insufficient balance\"}\n"},
  };
  for (const auto& c : cases) {
    std::ostringstream out, err;
    EXPECT_EQ(cli::RunOrvane(c.args, out, err), c.exitCode) << c.args[0];
    EXPECT_EQ(out.str(), c.out);
    EXPECT_EQ(err.str(), c.err);
  }
  for (std::string command : {"balance", "submit"}) {
    std::vector<std::string> args{command, "--service", service, "--token", "cut"};
    if (command == "submit") args.insert(args.end(), {"--job", "desk", package_.string()});
    std::ostringstream cutOut, cutErr;
    EXPECT_EQ(cli::RunOrvane(args, cutOut, cutErr), cli::kExitFailure) << command;
    EXPECT_EQ(cutOut.str(), "");
    EXPECT_NE(cutErr.str().find("HTTP request failed, GetLastError="), std::string::npos)
        << cutErr.str();
  }
  std::ostringstream out, err;
  EXPECT_EQ(cli::RunOrvane({"submit", "--service", service, "--token", "good", "--job", "x",
                            "--target", "5.3", package_.string()},
                           out, err),
            cli::kExitUsage);
}

// A token kept out of the process list: from the environment, else from the settings file.
TEST_F(ServiceOverSockets, BalanceTakesTheTokenFromTheEnvironmentOrTheSettingsFile) {
  std::string service = emulator_->BaseUrl();
  setenv("XDG_CONFIG_HOME", data_.c_str(), 1);
  fs::create_directories(data_ / "orvane");
  std::ofstream(data_ / "orvane" / "Quillbar.ini") << "[Settings]\r\napiToken=limit\r\n";
  setenv("ORVANE_TOKEN", "good", 1);
  std::ostringstream out, err;
  EXPECT_EQ(cli::RunOrvane({"balance", "--service", service}, out, err), cli::kExitOk);
  EXPECT_EQ(out.str(), "7 of 10 conversions left today\n");
  unsetenv("ORVANE_TOKEN");
  std::ostringstream out2, err2;
  EXPECT_EQ(cli::RunOrvane({"balance", "--service", service}, out2, err2), cli::kExitOk);
  EXPECT_EQ(out2.str(), "Daily limit reached (3/day)\n");
  unsetenv("XDG_CONFIG_HOME");
}

// A package path that names no readable file is refused before any connection, and reading it
// never blocks (a pipe) or runs away (a device).
TEST_F(ServiceOverSockets, SubmitRefusesWhatIsNotAFile) {
  fs::path fifo = data_ / "pipe";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  for (std::string package : {std::string("."), data_.string(), fifo.string(),
                              std::string("/dev/zero"), (data_ / "missing.json").string()}) {
    std::ostringstream out, err;
    EXPECT_EQ(cli::RunOrvane({"submit", "--service", emulator_->BaseUrl(), "--token", "good",
                              "--job", "j", package},
                             out, err),
              cli::kExitFailure);
    EXPECT_EQ(err.str(), "HTTP 0\nCannot read JSON file: " + package + "\n");
  }
  EXPECT_TRUE(emulator_->Requests().empty());
}

class ServiceOverTls : public ServiceOverSockets {
 protected:
  bool UseHttps() const override { return true; }
};

TEST_F(ServiceOverTls, TheEmulatorCertificateIsTrustedOnlyWhenGiven) {
  CurlHttpClient trusting(emulator_->CertificateFile().string());
  AccountStatus status = QueryAccountStatus(trusting, base_, u"good");
  EXPECT_TRUE(status.ok) << ToUtf8(status.error);
  HttpResult job =
      SubmitJob(trusting, files_, base_, package_.u16string(), u"good", u"tls job", u"5.2");
  EXPECT_TRUE(job.ok) << ToUtf8(job.text);
  // Verification is never switched off: without the certificate the peer is not trusted.
  AccountStatus untrusted = QueryAccountStatus(client_, base_, u"good");
  EXPECT_EQ(untrusted.error, u"HTTP request failed, GetLastError=60");
}

}  // namespace
}  // namespace orvane

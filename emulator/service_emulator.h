// A small real server that behaves like the conversion service, for tests, the demo and anyone
// who wants to try the client without an account. Plain HTTP or HTTPS on a loopback address.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

typedef struct ssl_ctx_st SSL_CTX;

namespace httplib {
struct Request;
struct Response;
}  // namespace httplib

namespace orvane::emulator {

// How a token's requests are answered instead of normally.
enum class Fault {
  kNone,
  kEmpty200,    // 200 with an empty body
  kStatus500,   // 500 with an empty body
  kStatus503,   // 503 with an empty body
  kSlow,        // the normal answer, after a delay
  kDrop,        // status and headers, then half the body, then the connection is closed
  kCutHeaders,  // the status line only, then the connection is closed
  kNonUtf8,     // a normal balance reply with bytes that are not UTF-8
  kLargeBody,   // a normal balance reply padded to 16 MiB
};

std::optional<Fault> ParseFault(const std::string& name);

struct Account {
  std::string token;
  int balance = 100;
  int dailyLimit = 0;  // 0: unlimited
  int conversionsLeft = -1;
  Fault fault = Fault::kNone;
};

struct EmulatorOptions {
  std::string host = "127.0.0.1";
  int port = 0;  // 0: any free port
  bool https = false;
  // Certificate and key for HTTPS; a self-signed pair is made in the data folder when unset.
  std::filesystem::path certFile, keyFile;
  std::filesystem::path dataFolder = "orvane-service-data";
  std::vector<Account> accounts;
  Fault fault = Fault::kNone;  // for every token without a fault of its own
  int slowMs = 2000;
};

// One request as the emulator saw it.
struct RequestRecord {
  std::string method, path;
  int status = 0;
  std::string head;  // request line and headers, in the order and form received
  size_t bodyBytes = 0;
};

class ServiceEmulator {
 public:
  explicit ServiceEmulator(EmulatorOptions options);
  ~ServiceEmulator();
  ServiceEmulator(const ServiceEmulator&) = delete;
  ServiceEmulator& operator=(const ServiceEmulator&) = delete;

  // Binds, then serves on a thread of its own. False with a message when it cannot.
  bool Start(std::string& error);
  void Stop();

  std::string BaseUrl() const;  // e.g. "http://127.0.0.1:41234"
  const std::filesystem::path& CertificateFile() const { return options_.certFile; }
  std::vector<RequestRecord> Requests() const;
  std::optional<Account> FindAccount(const std::string& token) const;

 private:
  class Server;
  using AccountHandler =
      std::function<void(const httplib::Request&, httplib::Response&, struct Account&, Fault)>;

  bool CreateTlsContext(SSL_CTX*& tls, std::string& error);
  void AddRoutes();
  void Answer(const httplib::Request& request, httplib::Response& response,
              const AccountHandler& normal);
  void AnswerBalance(httplib::Response& response, const Account& account, Fault fault);
  void AnswerJob(const httplib::Request& request, httplib::Response& response, Account& account);

  EmulatorOptions options_;
  int port_ = 0;
  std::unique_ptr<Server> server_;
  std::thread thread_;
  mutable std::mutex mutex_;
  std::vector<RequestRecord> requests_;
  int jobCount_ = 0;
};

}  // namespace orvane::emulator

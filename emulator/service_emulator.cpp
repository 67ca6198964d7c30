#include "emulator/service_emulator.h"

#include <openssl/ssl.h>
#include <unistd.h>

#include <httplib.h>
#include <chrono>
#include <fstream>

#include "emulator/connection_stream.h"
#include "emulator/self_signed.h"

namespace orvane::emulator {

namespace fs = std::filesystem;

namespace {

// The connection being served on this thread, so a handler can read the raw head and break
// the reply off.
thread_local ConnectionStream* currentConnection = nullptr;

constexpr std::pair<const char*, Fault> kFaultNames[] = {
    {"none", Fault::kNone},
    {"empty", Fault::kEmpty200},
    {"500", Fault::kStatus500},
    {"503", Fault::kStatus503},
    {"slow", Fault::kSlow},
    {"drop", Fault::kDrop},
    {"cut-headers", Fault::kCutHeaders},
    {"non-utf8", Fault::kNonUtf8},
    {"large-body", Fault::kLargeBody},
};

std::string BearerToken(const httplib::Request& request) {
  std::string value = request.get_header_value("Authorization");
  constexpr std::string_view kPrefix = "Bearer ";
  return value.rfind(kPrefix, 0) == 0 ? value.substr(kPrefix.size()) : std::string();
}

std::string BalanceJson(const Account& account) {
  return "{\"success\":true,\"balance\":" + std::to_string(account.balance) +
         ",\"daily_limit\":" + std::to_string(account.dailyLimit) +
         ",\"conversions_left\":" + std::to_string(account.conversionsLeft) + "}";
}

void Reply(httplib::Response& response, int status, const std::string& body) {
  response.status = status;
  if (!body.empty()) response.set_content(body, "application/json");
}

}  // namespace

std::optional<Fault> ParseFault(const std::string& name) {
  for (const auto& [text, fault] : kFaultNames) {
    if (name == text) return fault;
  }
  return std::nullopt;
}

// The HTTP library's server, with connections served through ConnectionStream.
class ServiceEmulator::Server final : public httplib::Server {
 public:
  explicit Server(SSL_CTX* tls) : tls_(tls) {}
  ~Server() override {
    if (tls_ != nullptr) SSL_CTX_free(tls_);
  }

 private:
  bool process_and_close_socket(socket_t socket) override {
    SSL* ssl = nullptr;
    if (tls_ != nullptr) {
      ssl = SSL_new(tls_);
      SSL_set_fd(ssl, socket);
      if (SSL_accept(ssl) <= 0) {
        SSL_free(ssl);
        close(socket);
        return false;
      }
    }
    ConnectionStream stream(socket, ssl);
    bool closed = false;
    bool served = process_request(stream, true, closed,
                                  [&](httplib::Request&) { currentConnection = &stream; });
    currentConnection = nullptr;
    if (ssl != nullptr) {
      SSL_shutdown(ssl);
      SSL_free(ssl);
    }
    shutdown(socket, SHUT_RDWR);
    close(socket);
    return served;
  }

  SSL_CTX* tls_;
};

ServiceEmulator::ServiceEmulator(EmulatorOptions options) : options_(std::move(options)) {}

ServiceEmulator::~ServiceEmulator() {
  Stop();
}

std::string ServiceEmulator::BaseUrl() const {
  return std::string(options_.https ? "https" : "http") + "://" + options_.host + ":" +
         std::to_string(port_);
}

std::vector<RequestRecord> ServiceEmulator::Requests() const {
  std::lock_guard lock(mutex_);
  return requests_;
}

std::optional<Account> ServiceEmulator::FindAccount(const std::string& token) const {
  std::lock_guard lock(mutex_);
  for (const Account& account : options_.accounts) {
    if (account.token == token) return account;
  }
  return std::nullopt;
}

bool ServiceEmulator::Start(std::string& error) {
  std::error_code ignored;
  fs::create_directories(options_.dataFolder / "jobs", ignored);
  SSL_CTX* tls = nullptr;
  if (options_.https && !CreateTlsContext(tls, error)) return false;
  server_ = std::make_unique<Server>(tls);
  AddRoutes();
  port_ = options_.port == 0
              ? server_->bind_to_any_port(options_.host)
              : (server_->bind_to_port(options_.host, options_.port) ? options_.port : -1);
  if (port_ <= 0) {
    error = "cannot listen on " + options_.host + ":" + std::to_string(options_.port);
    server_.reset();
    return false;
  }
  thread_ = std::thread([this] { server_->listen_after_bind(); });
  // The library has no readiness call; it is ready once it reports running.
  while (!server_->is_running())
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return true;
}

bool ServiceEmulator::CreateTlsContext(SSL_CTX*& tls, std::string& error) {
  if (options_.certFile.empty()) {
    options_.certFile = options_.dataFolder / "emulator-cert.pem";
    options_.keyFile = options_.dataFolder / "emulator-key.pem";
    if (!WriteSelfSignedCertificate(options_.certFile, options_.keyFile, error)) return false;
  }
  tls = SSL_CTX_new(TLS_server_method());
  if (SSL_CTX_use_certificate_chain_file(tls, options_.certFile.c_str()) != 1 ||
      SSL_CTX_use_PrivateKey_file(tls, options_.keyFile.c_str(), SSL_FILETYPE_PEM) != 1) {
    SSL_CTX_free(tls);
    error = "cannot use the certificate " + options_.certFile.string();
    return false;
  }
  return true;
}

// Finds the caller's account and applies its fault; the normal answer is left to `normal`.
void ServiceEmulator::Answer(const httplib::Request& request, httplib::Response& response,
                             const AccountHandler& normal) {
  std::unique_lock lock(mutex_);
  std::string token = BearerToken(request);
  Account* account = nullptr;
  for (Account& candidate : options_.accounts) {
    if (!token.empty() && candidate.token == token) account = &candidate;
  }
  Fault fault =
      account != nullptr && account->fault != Fault::kNone ? account->fault : options_.fault;
  switch (fault) {
    case Fault::kCutHeaders:
      if (currentConnection != nullptr) currentConnection->CutAfterStatusLine();
      return Reply(response, 200, "{}");
    case Fault::kEmpty200: return Reply(response, 200, "");
    case Fault::kStatus500: return Reply(response, 500, "");
    case Fault::kStatus503: return Reply(response, 503, "");
    case Fault::kSlow:
      lock.unlock();
      std::this_thread::sleep_for(std::chrono::milliseconds(options_.slowMs));
      lock.lock();
      break;
    default: break;
  }
  if (account == nullptr) {
    return Reply(response, 401, "{\"success\":false,\"error\":\"missing or invalid token\"}");
  }
  normal(request, response, *account, fault);
}

void ServiceEmulator::AnswerBalance(httplib::Response& response, const Account& account,
                                    Fault fault) {
  std::string body = BalanceJson(account);
  auto pad = [&body](const std::string& member) { body.insert(body.size() - 1, member); };
  if (fault == Fault::kNonUtf8) pad(",\"note\":\"caf\xe9 \xff\xfe\"");
  if (fault == Fault::kLargeBody) pad(",\"padding\":\"" + std::string(16 << 20, 'x') + "\"");
  if (fault == Fault::kDrop && currentConnection != nullptr) {
    currentConnection->DropDuringBody();
    pad(",\"padding\":\"" + std::string(64 << 10, 'x') + "\"");
  }
  Reply(response, 200, body);
}

void ServiceEmulator::AnswerJob(const httplib::Request& request, httplib::Response& response,
                                Account& account) {
  if (account.balance <= 0) {
    return Reply(response, 402, "{\"success\":false,\"error\":\"insufficient balance\"}");
  }
  if (account.dailyLimit > 0 && account.conversionsLeft <= 0) {
    return Reply(response, 429, "{\"success\":false,\"error\":\"daily limit reached\"}");
  }
  --account.balance;
  if (account.dailyLimit > 0) --account.conversionsLeft;
  char id[16];
  std::snprintf(id, sizeof id, "%06d", ++jobCount_);
  fs::path folder = options_.dataFolder / "jobs" / id;
  fs::create_directories(folder);
  std::ofstream(folder / "head.txt", std::ios::binary)
      << (currentConnection != nullptr ? currentConnection->head() : std::string());
  std::ofstream(folder / "body.json", std::ios::binary) << request.body;
  Reply(response, 200, std::string("{\"success\":true,\"job_id\":\"job-") + id + "\"}");
}

void ServiceEmulator::AddRoutes() {
  server_->Get("/api/balance",
               [this](const httplib::Request& request, httplib::Response& response) {
                 Answer(request, response,
                        [this](const httplib::Request&, httplib::Response& reply, Account& account,
                               Fault fault) { AnswerBalance(reply, account, fault); });
               });
  server_->Post("/node/api/v1/jobs",
                [this](const httplib::Request& request, httplib::Response& response) {
                  Answer(request, response,
                         [this](const httplib::Request& job, httplib::Response& reply,
                                Account& account, Fault) { AnswerJob(job, reply, account); });
                });
  // Recorded before the reply is written, so a client that has its answer finds its request
  // in the record.
  server_->set_post_routing_handler(
      [this](const httplib::Request& request, httplib::Response& response) {
        RequestRecord record{request.method, request.path, response.status,
                             currentConnection != nullptr ? currentConnection->head() : "",
                             request.body.size()};
        std::lock_guard lock(mutex_);
        std::ofstream(options_.dataFolder / "requests.log", std::ios::app)
            << record.method << ' ' << record.path << ' ' << record.status << ' '
            << record.bodyBytes << '\n';
        requests_.push_back(std::move(record));
      });
}

void ServiceEmulator::Stop() {
  if (!server_) return;
  server_->stop();
  if (thread_.joinable()) thread_.join();
  server_.reset();
}

}  // namespace orvane::emulator

// A loopback TCP server that answers each request with scripted bytes and then closes, resets
// or holds the connection, so a client can be shown replies broken off at any byte.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace orvane::testing {

struct ScriptedReply {
  enum class End { kClose, kReset, kHang };
  std::string bytes;
  End end = End::kClose;
};

class RawHttpServer {
 public:
  // `answer` sees each request (head and body, as received) and says what to send back.
  explicit RawHttpServer(std::function<ScriptedReply(const std::string& request)> answer);
  ~RawHttpServer();
  RawHttpServer(const RawHttpServer&) = delete;
  RawHttpServer& operator=(const RawHttpServer&) = delete;

  int port() const { return port_; }
  std::string Url(const std::string& path) const;
  std::vector<std::string> requests() const;

 private:
  void Serve();
  void Answer(int connection);

  std::function<ScriptedReply(const std::string&)> answer_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  std::vector<int> held_;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::thread thread_;
};

// The request line's path ("/x" of "GET /x HTTP/1.1").
std::string RequestPath(const std::string& request);

}  // namespace orvane::testing

#include "tests/raw_http_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace orvane::testing {

namespace {

// The head up to the blank line, then as many body bytes as Content-Length names.
std::string ReadRequest(int connection) {
  std::string request;
  char buffer[4096];
  size_t headEnd = std::string::npos;
  size_t wanted = 0;
  while (headEnd == std::string::npos || request.size() < headEnd + wanted) {
    ssize_t count = recv(connection, buffer, sizeof buffer, 0);
    if (count <= 0) break;
    request.append(buffer, static_cast<size_t>(count));
    if (headEnd == std::string::npos && (headEnd = request.find("\r\n\r\n")) != std::string::npos) {
      headEnd += 4;
      size_t length = request.find("Content-Length: ");
      if (length != std::string::npos && length < headEnd) {
        wanted = std::strtoul(request.c_str() + length + 16, nullptr, 10);
      }
    }
  }
  return request;
}

void SendAll(int connection, const std::string& bytes) {
  size_t sent = 0;
  while (sent < bytes.size()) {
    ssize_t count = send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<size_t>(count);
  }
}

}  // namespace

RawHttpServer::RawHttpServer(std::function<ScriptedReply(const std::string&)> answer)
    : answer_(std::move(answer)) {
  listener_ = socket(AF_INET, SOCK_STREAM, 0);
  int reuse = 1;
  setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
      listen(listener_, 16) != 0 ||
      getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    throw std::runtime_error("cannot listen on loopback");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { Serve(); });
}

RawHttpServer::~RawHttpServer() {
  stopping_ = true;
  thread_.join();
  for (int connection : held_)
    close(connection);
  close(listener_);
}

std::string RawHttpServer::Url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<std::string> RawHttpServer::requests() const {
  std::lock_guard lock(mutex_);
  return requests_;
}

void RawHttpServer::Serve() {
  while (!stopping_) {
    pollfd waiting{listener_, POLLIN, 0};
    if (poll(&waiting, 1, 20) <= 0) continue;
    int connection = accept(listener_, nullptr, nullptr);
    if (connection >= 0) Answer(connection);
  }
}

void RawHttpServer::Answer(int connection) {
  std::string request = ReadRequest(connection);
  {
    std::lock_guard lock(mutex_);
    requests_.push_back(request);
  }
  ScriptedReply reply = answer_(request);
  SendAll(connection, reply.bytes);
  switch (reply.end) {
    case ScriptedReply::End::kHang: held_.push_back(connection); return;
    case ScriptedReply::End::kReset: {
      linger abort{1, 0};  // close with RST instead of FIN
      setsockopt(connection, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
      break;
    }
    case ScriptedReply::End::kClose: shutdown(connection, SHUT_WR); break;
  }
  close(connection);
}

std::string RequestPath(const std::string& request) {
  size_t start = request.find(' ') + 1;
  return request.substr(start, request.find(' ', start) - start);
}

}  // namespace orvane::testing

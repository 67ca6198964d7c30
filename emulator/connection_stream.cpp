#include "emulator/connection_stream.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

namespace orvane::emulator {

namespace {

constexpr int kTimeoutMs = 30'000;

void Describe(const sockaddr_storage& address, std::string& ip, int& port) {
  char text[INET6_ADDRSTRLEN] = {};
  if (address.ss_family == AF_INET) {
    const auto& v4 = reinterpret_cast<const sockaddr_in&>(address);
    inet_ntop(AF_INET, &v4.sin_addr, text, sizeof text);
    port = ntohs(v4.sin_port);
  } else if (address.ss_family == AF_INET6) {
    const auto& v6 = reinterpret_cast<const sockaddr_in6&>(address);
    inet_ntop(AF_INET6, &v6.sin6_addr, text, sizeof text);
    port = ntohs(v6.sin6_port);
  }
  ip = text;
}

}  // namespace

bool ConnectionStream::WaitFor(short events) const {
  pollfd descriptor{socket_, events, 0};
  return poll(&descriptor, 1, kTimeoutMs) > 0;
}

bool ConnectionStream::is_readable() const {
  return (ssl_ != nullptr && SSL_pending(ssl_) > 0) || WaitFor(POLLIN);
}

bool ConnectionStream::is_writable() const {
  return WaitFor(POLLOUT);
}

ssize_t ConnectionStream::RawRead(char* ptr, size_t size) {
  if (ssl_ == nullptr) return recv(socket_, ptr, size, 0);
  int count = SSL_read(ssl_, ptr, static_cast<int>(std::min<size_t>(size, INT32_MAX)));
  return count > 0 ? count : -1;
}

ssize_t ConnectionStream::RawWrite(const char* ptr, size_t size) {
  if (ssl_ == nullptr) return send(socket_, ptr, size, MSG_NOSIGNAL);
  int count = SSL_write(ssl_, ptr, static_cast<int>(std::min<size_t>(size, INT32_MAX)));
  return count > 0 ? count : -1;
}

ssize_t ConnectionStream::read(char* ptr, size_t size) {
  if (!is_readable()) return -1;
  ssize_t count = RawRead(ptr, size);
  if (count > 0 && !headComplete_) {
    head_.append(ptr, static_cast<size_t>(count));
    size_t end = head_.find("\r\n\r\n");
    if (end != std::string::npos) {
      head_.resize(end + 4);  // the rest is body
      headComplete_ = true;
    }
  }
  return count;
}

ssize_t ConnectionStream::write(const char* ptr, size_t size) {
  if (cutAfterStatusLine_) {
    std::string_view reply(ptr, size);
    RawWrite(ptr, std::min(size, reply.find("\r\n") + 2));
    shutdown(socket_, SHUT_RDWR);
    return -1;
  }
  if (dropDuringBody_ && ++writes_ > 1) {
    RawWrite(ptr, size / 2);
    shutdown(socket_, SHUT_RDWR);
    return -1;
  }
  if (!is_writable()) return -1;
  return RawWrite(ptr, size);
}

void ConnectionStream::get_remote_ip_and_port(std::string& ip, int& port) const {
  sockaddr_storage address{};
  socklen_t length = sizeof address;
  if (getpeername(socket_, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
    Describe(address, ip, port);
  }
}

void ConnectionStream::get_local_ip_and_port(std::string& ip, int& port) const {
  sockaddr_storage address{};
  socklen_t length = sizeof address;
  if (getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
    Describe(address, ip, port);
  }
}

}  // namespace orvane::emulator

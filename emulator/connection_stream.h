// One client connection as the HTTP server reads and writes it, over a plain socket or TLS.
// It keeps the request's head (request line and headers) exactly as the bytes arrived, since the
// server library hands headers over sorted by name, and it can break a reply off on purpose.
#pragma once

#include <openssl/ssl.h>

#include <httplib.h>

#include <string>

namespace orvane::emulator {

class ConnectionStream final : public httplib::Stream {
 public:
  // `ssl` is null for a plain connection; the stream owns neither the socket nor `ssl`.
  ConnectionStream(socket_t socket, SSL* ssl) : socket_(socket), ssl_(ssl) {}

  bool is_readable() const override;
  bool is_writable() const override;
  ssize_t read(char* ptr, size_t size) override;
  ssize_t write(const char* ptr, size_t size) override;
  using httplib::Stream::write;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  socket_t socket() const override { return socket_; }

  // The request head as received, up to and including the blank line.
  const std::string& head() const { return head_; }
  // Lets the reply's first write (status and headers) through, then sends half of the next
  // write and closes the connection.
  void DropDuringBody() { dropDuringBody_ = true; }
  // Sends the reply's status line alone, then closes the connection.
  void CutAfterStatusLine() { cutAfterStatusLine_ = true; }

 private:
  bool WaitFor(short events) const;
  ssize_t RawRead(char* ptr, size_t size);
  ssize_t RawWrite(const char* ptr, size_t size);

  socket_t socket_;
  SSL* ssl_;
  std::string head_;
  bool headComplete_ = false;
  bool dropDuringBody_ = false;
  bool cutAfterStatusLine_ = false;
  int writes_ = 0;
};

}  // namespace orvane::emulator

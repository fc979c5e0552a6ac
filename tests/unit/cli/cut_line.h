#pragma once

#include <array>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

#include "support/child_process.h"
#include "support/server_database.h"

namespace azcoll::cli {

/// A way to a server that breaks: a process of its own that takes one connection on the loopback
/// address, passes on so many pieces from the client, and then hangs up on both sides. Without a
/// server behind it it hangs up at once.
class CutLine {
 public:
  /// `server` is a connection string with `Server` and `Port`.
  CutLine(const std::string& server, int pieces)
      : listener_{::socket(AF_INET, SOCK_STREAM, 0)},
        port_{listenOnAnyPort(listener_)},
        connectionString_{test::withKey(
            test::withKey(server, "Server", "127.0.0.1", {"server", "address", "servername"}),
            "Port", std::to_string(port_), {"port"})},
        process_{[this, host = test::valueOf(server, {"server"}),
                  port = test::valueOf(server, {"port"}),
                  pieces] { return serve(listener_, host, port, pieces); }} {
    ::close(listener_);
  }

  [[nodiscard]] const std::string& connectionString() const { return connectionString_; }

 private:
  static int listenOnAnyPort(int listener) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (listener < 0 || ::bind(listener, any, size) != 0 || ::listen(listener, 1) != 0 ||
        ::getsockname(listener, any, &size) != 0) {
      throw std::runtime_error{"cannot listen on the loopback address"};
    }
    return ntohs(address.sin_port);
  }

  static int connectTo(const std::string& host, const std::string& port) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), port.c_str(), &hints, &found) != 0) {
      return -1;
    }
    const int line = ::socket(found->ai_family, found->ai_socktype, found->ai_protocol);
    const bool connected = ::connect(line, found->ai_addr, found->ai_addrlen) == 0;
    ::freeaddrinfo(found);
    return connected ? line : -1;
  }

  /// Passes on what has come; false at the end of one side.
  static bool passOn(int from, int to) {
    std::array<char, 65536> bytes{};
    const ssize_t count = ::recv(from, bytes.data(), bytes.size(), 0);
    return count > 0 &&
           ::send(to, bytes.data(), static_cast<std::size_t>(count), MSG_NOSIGNAL) == count;
  }

  static int serve(int listener, const std::string& host, const std::string& port, int pieces) {
    const int client = ::accept(listener, nullptr, nullptr);
    ::close(listener);
    const int server = pieces > 0 ? connectTo(host, port) : -1;
    std::array<pollfd, 2> lines{{{client, POLLIN, 0}, {server, POLLIN, 0}}};
    while (server >= 0 && ::poll(lines.data(), lines.size(), -1) > 0) {
      if ((lines[0].revents != 0 && (pieces-- == 0 || !passOn(client, server))) ||
          (lines[1].revents != 0 && !passOn(server, client))) {
        break;
      }
    }
    return 0;  // the end of the process hangs up
  }

  int listener_;
  int port_;
  std::string connectionString_;
  test::ChildProcess process_;
};

}  // namespace azcoll::cli

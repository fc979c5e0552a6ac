#include "counting_relay.h"

#include <algorithm>
#include <array>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "data/text.h"

namespace azcoll::bench {
namespace {

/// Start and length of the value of a key, which the connection string must have.
std::pair<std::size_t, std::size_t> valueOf(const std::string& text, std::string_view key) {
  const std::size_t at = text.find(key);
  if (at == std::string::npos) {
    throw std::runtime_error(join("no ", key, " in the connection string"));
  }
  const std::size_t start = at + key.size();
  return {start, std::min(text.find(';', start), text.size()) - start};
}

/// Hands on everything that is there; false at the end.
bool handOn(int from, int to) {
  std::array<char, 65536> bytes{};
  const ssize_t size = ::recv(from, bytes.data(), bytes.size(), 0);
  for (ssize_t sent = 0; sent < size;) {
    const ssize_t part =
        ::send(to, bytes.data() + sent, static_cast<std::size_t>(size - sent), MSG_NOSIGNAL);
    if (part < 0) {
      return false;
    }
    sent += part;
  }
  return size > 0;
}

/// A small packet does not wait for the one behind it.
void sendAtOnce(int socket) {
  const int on = 1;
  ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

}  // namespace

CountingRelay::CountingRelay(const std::string& connectionString)
    : connectionString_{connectionString} {
  const auto [server, serverLength] = valueOf(connectionString_, "Server=");
  host_ = connectionString_.substr(server, serverLength);
  const auto [port, portLength] = valueOf(connectionString_, "Port=");
  port_ = connectionString_.substr(port, portLength);

  listening_ = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (::bind(listening_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
      ::listen(listening_, 8) != 0 ||
      ::getsockname(listening_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    throw std::runtime_error("no port to listen on");
  }
  connectionString_.replace(port, portLength, std::to_string(ntohs(address.sin_port)));
  const auto [place, placeLength] = valueOf(connectionString_, "Server=");
  connectionString_.replace(place, placeLength, "127.0.0.1");
  accepting_ = std::jthread{[this] { accept(); }};
}

CountingRelay::~CountingRelay() {
  ::shutdown(listening_, SHUT_RDWR);
  accepting_.join();
  ::close(listening_);
}

void CountingRelay::accept() {
  for (int program = 0; (program = ::accept(listening_, nullptr, nullptr)) >= 0;) {
    sendAtOnce(program);
    passing_.emplace_back([this, program] { pass(program); });
  }
}

int CountingRelay::connectToServer() const {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(host_.c_str(), port_.c_str(), &wanted, &found) != 0) {
    return -1;
  }
  int server = -1;
  for (const addrinfo* each = found; each != nullptr && server < 0; each = each->ai_next) {
    server = ::socket(each->ai_family, each->ai_socktype, each->ai_protocol);
    if (::connect(server, each->ai_addr, each->ai_addrlen) != 0) {
      ::close(server);
      server = -1;
    }
  }
  ::freeaddrinfo(found);
  return server;
}

void CountingRelay::pass(int program) {
  const int server = connectToServer();
  if (server >= 0) {
    sendAtOnce(server);
    bool serverSpoke = true;
    std::array<pollfd, 2> ends{pollfd{program, POLLIN, 0}, pollfd{server, POLLIN, 0}};
    for (bool open = true; open && ::poll(ends.data(), ends.size(), -1) > 0;) {
      if (ends[1].revents != 0) {
        serverSpoke = true;
        open = handOn(server, program);
      } else if (ends[0].revents != 0) {
        turns_ += serverSpoke ? 1 : 0;
        serverSpoke = false;
        open = handOn(program, server);
      }
    }
    ::close(server);
  }
  ::close(program);
}

}  // namespace azcoll::bench

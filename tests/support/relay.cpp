#include "support/relay.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "data/text.h"
#include "support/server_database.h"

namespace azcoll::test {
namespace {

constexpr std::size_t kHeader = 8;        // of a TDS packet
constexpr std::size_t kLengthOffset = 2;  // big-endian, the header included

int required(int result, const char* what) {
  if (result < 0) {
    throw std::system_error{errno, std::generic_category(), what};
  }
  return result;
}

std::size_t indexOf(Direction direction) { return direction == Direction::ToServer ? 0 : 1; }

/// Whether a header of TDS begins like this: requests, answers, what is said before the login.
bool isPacketType(std::uint8_t type) {
  constexpr std::array<std::uint8_t, 9> kTypes{0x01, 0x02, 0x03, 0x04, 0x06,
                                               0x07, 0x0E, 0x10, 0x12};
  for (const std::uint8_t each : kTypes) {
    if (each == type) {
      return true;
    }
  }
  return false;
}

bool sendAll(int socket, const std::uint8_t* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t sent = ::send(socket, bytes, count, MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    bytes += sent;
    count -= static_cast<std::size_t>(sent);
  }
  return true;
}

void sendAtOnce(int socket) {
  const int yes = 1;
  ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
}

int connectedTo(const std::string& host, const std::string& port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(host.c_str(), port.c_str(), &hints, &found) != 0) {
    return -1;
  }
  int server = -1;
  for (const addrinfo* each = found; each != nullptr && server < 0; each = each->ai_next) {
    server = ::socket(each->ai_family, each->ai_socktype | SOCK_CLOEXEC, each->ai_protocol);
    if (server >= 0 && ::connect(server, each->ai_addr, each->ai_addrlen) != 0) {
      ::close(server);
      server = -1;
    }
  }
  ::freeaddrinfo(found);
  return server;
}

/// The connection string that goes to `port` of this machine instead of the server it names.
std::string throughPort(std::string_view connectionString, std::uint16_t port) {
  const bool apart = !valueOf(connectionString, {"port"}).empty();
  const std::string here =
      withKey(connectionString, "Server",
              apart ? "127.0.0.1" : join("127.0.0.1,", static_cast<std::int64_t>(port)),
              {"server", "address", "addr"});
  return apart ? withKey(here, "Port", std::to_string(port), {"port"}) : here;
}

struct ServerAddress {
  std::string host;
  std::string port;
};

ServerAddress serverAddress(std::string_view connectionString) {
  std::string host = valueOf(connectionString, {"server", "address", "addr"});
  std::string port = valueOf(connectionString, {"port"});
  if (host.starts_with("tcp:")) {
    host.erase(0, 4);
  }
  if (const std::size_t comma = host.find(','); comma != std::string::npos) {
    port = host.substr(comma + 1);
    host.erase(comma);
  }
  return {.host = host, .port = port.empty() ? "1433" : port};
}

}  // namespace

std::string_view nameOf(Direction direction) {
  return direction == Direction::ToServer ? "to the server" : "to the client";
}

std::string_view nameOf(Trouble trouble) {
  switch (trouble) {
    case Trouble::CutAfter:
      return "cut after";
    case Trouble::CutInside:
      return "cut inside";
    case Trouble::Hold:
      return "held at";
    case Trouble::Delay:
      return "delayed at";
  }
  return {};
}

Relay::Relay(std::string_view server) {
  ServerAddress behind = serverAddress(server);
  host_ = std::move(behind.host);
  port_ = std::move(behind.port);
  std::array<int, 2> pipe{};
  required(::pipe(pipe.data()), "pipe");
  wakeRead_ = pipe[0];
  wakeWrite_ = pipe[1];
  listener_ = required(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const plain = static_cast<sockaddr*>(static_cast<void*>(&address));
  required(::bind(listener_, plain, size), "bind");
  required(::listen(listener_, 1), "listen");
  required(::getsockname(listener_, plain, &size), "getsockname");
  connectionString_ = throughPort(server, ntohs(address.sin_port));
  thread_ = std::thread{[this] { serve(); }};
}

Relay::~Relay() {
  ended_ = true;
  const char any = 0;
  static_cast<void>(::write(wakeWrite_, &any, 1) + 1);
  thread_.join();
  close();
  for (const int each : {listener_, wakeRead_, wakeWrite_}) {
    ::close(each);
  }
}

void Relay::watch() {
  const std::lock_guard lock{mutex_};
  plan_.reset();
  packets_[0] = packets_[1] = 0;
  troubled_ = false;
  understood_ = true;
  watching_ = true;
}

void Relay::watch(Direction direction, std::size_t number, Trouble trouble,
                  std::chrono::milliseconds delay) {
  watch();
  const std::lock_guard lock{mutex_};
  plan_ = Plan{direction, number, trouble, delay};
}

void Relay::hangUpAfter(std::size_t pieces) {
  const std::lock_guard lock{mutex_};
  mostPieces_ = pieces;
}

std::size_t Relay::packets(Direction direction) const { return packets_[indexOf(direction)]; }

void Relay::drop() {
  const std::lock_guard lock{mutex_};
  close();
}

/// The thread: whoever has something to say is heard.
void Relay::serve() {
  while (!ended_) {
    std::array<pollfd, 4> watched{};
    watched[0] = {.fd = wakeRead_, .events = POLLIN, .revents = 0};
    watched[1] = {.fd = listener_, .events = POLLIN, .revents = 0};
    {
      const std::lock_guard lock{mutex_};
      watched[2] = {.fd = held_ ? -1 : ways_[0].from, .events = POLLIN, .revents = 0};
      watched[3] = {.fd = held_ ? -1 : ways_[1].from, .events = POLLIN, .revents = 0};
    }
    constexpr int kLookAgain = 200;  // milliseconds: a connection may have been dropped meanwhile
    if (::poll(watched.data(), watched.size(), kLookAgain) <= 0 || ended_) {
      continue;
    }
    const std::lock_guard lock{mutex_};
    if (watched[2].revents != 0 && watched[2].fd == ways_[0].from) {
      pass(Direction::ToServer);
    }
    if (watched[3].revents != 0 && watched[3].fd == ways_[1].from) {
      pass(Direction::ToClient);
    }
    if (watched[1].revents != 0) {
      accept();
    }
  }
}

void Relay::accept() {
  const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
  if (client < 0) {
    return;
  }
  close();
  watching_ = false;
  pieces_ = 0;
  clientSpoke_ = false;
  const int server = connectedTo(host_, port_);
  if (server < 0) {
    ::close(client);
    return;
  }
  sendAtOnce(client);
  sendAtOnce(server);
  ways_[indexOf(Direction::ToServer)] = {client, server, {}};
  ways_[indexOf(Direction::ToClient)] = {server, client, {}};
}

/// Takes what one side has said; the mutex is held.
void Relay::pass(Direction direction) {
  Way& way = ways_[indexOf(direction)];
  if (way.from < 0 || held_) {
    return;
  }
  std::array<std::uint8_t, 16384> bytes{};
  const ssize_t got = ::recv(way.from, bytes.data(), bytes.size(), 0);
  if (got <= 0) {
    close();
    return;
  }
  const bool isClient = direction == Direction::ToServer;
  turns_ += isClient && !clientSpoke_ ? 1 : 0;
  clientSpoke_ = isClient;
  if (isClient && mostPieces_ && pieces_++ == *mostPieces_) {
    close();
    return;
  }
  const auto count = static_cast<std::size_t>(got);
  if (!watching_ || !understood_) {
    if (!sendAll(way.to, bytes.data(), count)) {
      close();
    }
    return;
  }
  way.pending.insert(way.pending.end(), bytes.begin(), bytes.begin() + got);
  while (way.from >= 0 && !held_ && way.pending.size() >= kHeader) {
    const std::size_t length =
        way.pending[kLengthOffset] * std::size_t{256} + way.pending[kLengthOffset + 1];
    if (!isPacketType(way.pending[0]) || length < kHeader) {
      understood_ = false;
      close();
      return;
    }
    if (way.pending.size() < length || !passPacket(direction, length)) {
      return;
    }
  }
}

/// Passes a whole packet on, or makes the trouble that is planned for it. Returns whether the
/// connection goes on.
bool Relay::passPacket(Direction direction, std::size_t length) {
  Way& way = ways_[indexOf(direction)];
  const std::size_t number = ++packets_[indexOf(direction)];
  const bool here = plan_ && plan_->direction == direction && plan_->number == number;
  troubled_ = troubled_ || here;
  if (here && plan_->trouble == Trouble::Hold) {
    held_ = true;
    return false;
  }
  if (here && plan_->trouble == Trouble::Delay) {
    std::this_thread::sleep_for(plan_->delay);
  }
  const bool inside = here && plan_->trouble == Trouble::CutInside;
  const bool sent = sendAll(way.to, way.pending.data(), inside ? length / 2 : length);
  if (!sent || inside || (here && plan_->trouble == Trouble::CutAfter)) {
    close();
    return false;
  }
  way.pending.erase(way.pending.begin(), way.pending.begin() + static_cast<std::ptrdiff_t>(length));
  return true;
}

void Relay::close() {
  for (Way& way : ways_) {
    if (way.from >= 0) {
      ::close(way.from);
    }
    way = {};
  }
  held_ = false;
}

}  // namespace azcoll::test

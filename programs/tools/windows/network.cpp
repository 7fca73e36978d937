#include "network.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <array>
#include <system_error>

namespace vordane::tools {
namespace {

[[noreturn]] void failWith(int number) {
  if (number == WSAETIMEDOUT || number == WSAEWOULDBLOCK) throw NetworkError("it answers too slowly");
  std::string reason = std::system_category().message(number);
  while (!reason.empty() && (reason.back() == '.' || reason.back() == '\n' || reason.back() == '\r'))
    reason.pop_back();
  throw NetworkError(reason);
}

class WindowsSocket : public Socket {
 public:
  WindowsSocket(SOCKET socket, Transport transport) : socket_(socket), transport_(transport) {}
  WindowsSocket(const WindowsSocket&) = delete;
  WindowsSocket& operator=(const WindowsSocket&) = delete;
  ~WindowsSocket() override { closesocket(socket_); }

  void send(std::string_view bytes) override {
    constexpr std::size_t most = 1 << 16;
    while (!bytes.empty()) {
      const int sent = ::send(socket_, bytes.data(), static_cast<int>(std::min(bytes.size(), most)), 0);
      if (sent == SOCKET_ERROR) failWith(WSAGetLastError());
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
  }

  void finish() override { transport_ == Transport::tcp ? awaitEnd() : noticeRefusal(); }

 private:
  // The system does not tell what has arrived: it is given a moment, in which the other side must not end the
  // connection.
  void awaitArrival() const {
    constexpr long microseconds = 300'000;
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(socket_, &readable);
    timeval moment{0, microseconds};
    const int ready = select(0, &readable, nullptr, nullptr, &moment);
    if (ready == SOCKET_ERROR) failWith(WSAGetLastError());
    if (ready == 0) return;
    char said = 0;
    const int count = recv(socket_, &said, 1, MSG_PEEK);
    if (count == 0) throw NetworkError(brokeOff);
    if (count == SOCKET_ERROR) failWith(WSAGetLastError());
  }

  void awaitEnd() const {
    awaitArrival();
    if (shutdown(socket_, SD_SEND) != 0) failWith(WSAGetLastError());
    std::array<char, 1024> said;
    for (;;) {
      const int count = recv(socket_, said.data(), static_cast<int>(said.size()), 0);
      if (count == 0) return;
      if (count == SOCKET_ERROR) failWith(WSAGetLastError());
    }
  }

  void noticeRefusal() const {
    int error = 0;
    int size = sizeof error;
    if (getsockopt(socket_, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size) == 0 && error != 0)
      failWith(error);
  }

  SOCKET socket_;
  Transport transport_;
};

struct FreeAddresses {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

// The system's sockets, as long as it lives.
class WindowsNetwork : public Network {
 public:
  WindowsNetwork() { WSAStartup(MAKEWORD(2, 2), &data_); }
  WindowsNetwork(const WindowsNetwork&) = delete;
  WindowsNetwork& operator=(const WindowsNetwork&) = delete;
  ~WindowsNetwork() override { WSACleanup(); }

  std::unique_ptr<Socket> connect(const Address& address, Transport transport,
                                  std::chrono::seconds patience) override {
    addrinfo wanted{};
    wanted.ai_socktype = transport == Transport::tcp ? SOCK_STREAM : SOCK_DGRAM;
    addrinfo* found = nullptr;
    const int failure = getaddrinfo(address.host.c_str(), address.port.c_str(), &wanted, &found);
    const std::unique_ptr<addrinfo, FreeAddresses> list(found);
    if (failure != 0) failWith(failure);
    int error = WSAHOST_NOT_FOUND;
    for (const addrinfo* one = list.get(); one != nullptr; one = one->ai_next) {
      const SOCKET handle = socket(one->ai_family, one->ai_socktype, one->ai_protocol);
      if (handle == INVALID_SOCKET) {
        error = WSAGetLastError();
        continue;
      }
      auto made = std::make_unique<WindowsSocket>(handle, transport);
      const auto time = static_cast<DWORD>(std::chrono::milliseconds(patience).count());
      const auto* value = reinterpret_cast<const char*>(&time);
      setsockopt(handle, SOL_SOCKET, SO_SNDTIMEO, value, sizeof time);
      setsockopt(handle, SOL_SOCKET, SO_RCVTIMEO, value, sizeof time);
      if (::connect(handle, one->ai_addr, static_cast<int>(one->ai_addrlen)) == 0) return made;
      error = WSAGetLastError();
    }
    failWith(error);
  }

  std::string hostName() override {
    std::array<char, 256> name{};
    return gethostname(name.data(), static_cast<int>(name.size() - 1)) == 0 ? name.data() : "";
  }

 private:
  WSADATA data_{};
};

}  // namespace

std::unique_ptr<Network> systemNetwork() {
  return std::make_unique<WindowsNetwork>();
}

}  // namespace vordane::tools

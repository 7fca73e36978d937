#include "network.h"

#include <linux/sockios.h>
#include <netdb.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "platform/file_moves.h"

namespace vordane::tools {
namespace {

[[noreturn]] void failWith(int number) {
  if (number == EAGAIN || number == EWOULDBLOCK || number == EINPROGRESS)
    throw NetworkError("it answers too slowly");
  throw NetworkError(std::generic_category().message(number));
}

class PosixSocket : public Socket {
 public:
  PosixSocket(int descriptor, Transport transport, std::chrono::seconds patience)
      : descriptor_(descriptor), transport_(transport), patience_(patience) {}
  PosixSocket(const PosixSocket&) = delete;
  PosixSocket& operator=(const PosixSocket&) = delete;
  ~PosixSocket() override { close(descriptor_); }

  void send(std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent < 0 && errno != EINTR) failWith(errno);
      if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
  }

  void finish() override { transport_ == Transport::tcp ? awaitEnd() : noticeRefusal(); }

 private:
  // What the other machine has acknowledged its program has taken, or the end is a reset and no end.
  void awaitArrival() const {
    using Clock = std::chrono::steady_clock;
    const auto limit = Clock::now() + patience_;
    for (int waiting = 0;;) {
      char said = 0;
      const ssize_t count = recv(descriptor_, &said, 1, MSG_PEEK | MSG_DONTWAIT);
      if (count == 0) throw NetworkError(brokeOff);
      if (count < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) failWith(errno);
      if (ioctl(descriptor_, SIOCOUTQ, &waiting) != 0) failWith(errno);
      if (waiting == 0) return;
      if (Clock::now() > limit) failWith(EAGAIN);
      platform::sleepFor(std::chrono::milliseconds(1));
    }
  }

  void awaitEnd() const {
    awaitArrival();
    if (shutdown(descriptor_, SHUT_WR) != 0) failWith(errno);
    std::array<char, 1024> said;
    for (;;) {
      const ssize_t count = recv(descriptor_, said.data(), said.size(), 0);
      if (count == 0) return;
      if (count < 0 && errno != EINTR) failWith(errno);
    }
  }

  void noticeRefusal() const {
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error != 0) failWith(error);
  }

  int descriptor_;
  Transport transport_;
  std::chrono::seconds patience_;
};

struct FreeAddresses {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

class PosixNetwork : public Network {
 public:
  std::unique_ptr<Socket> connect(const Address& address, Transport transport,
                                  std::chrono::seconds patience) override {
    addrinfo wanted{};
    wanted.ai_socktype = transport == Transport::tcp ? SOCK_STREAM : SOCK_DGRAM;
    addrinfo* found = nullptr;
    const int failure = getaddrinfo(address.host.c_str(), address.port.c_str(), &wanted, &found);
    const std::unique_ptr<addrinfo, FreeAddresses> list(found);
    if (failure != 0) throw NetworkError(gai_strerror(failure));
    int error = ENOENT;
    for (const addrinfo* one = list.get(); one != nullptr; one = one->ai_next) {
      const int descriptor = socket(one->ai_family, one->ai_socktype | SOCK_CLOEXEC, one->ai_protocol);
      if (descriptor < 0) {
        error = errno;
        continue;
      }
      auto made = std::make_unique<PosixSocket>(descriptor, transport, patience);
      const timeval time{patience.count(), 0};
      setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
      setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
      if (::connect(descriptor, one->ai_addr, one->ai_addrlen) == 0) return made;
      error = errno;
    }
    failWith(error);
  }

  std::string hostName() override {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
  }
};

}  // namespace

std::unique_ptr<Network> systemNetwork() {
  return std::make_unique<PosixNetwork>();
}

}  // namespace vordane::tools

// The network, as far as telling other systems needs it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vordane::tools {

struct Address {
  std::string host, port;

  bool operator==(const Address&) const = default;
};
// Of "HOST:PORT" or "[2001:db8::1]:PORT", the port from 1 to 65535. Nothing for anything else.
std::optional<Address> addressOf(std::string_view written);

// The text is a reason: "connection refused".
class NetworkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline constexpr const char* brokeOff = "it broke the connection off";

class Socket {
 public:
  virtual ~Socket() = default;
  // All of it, over a datagram socket as one datagram. Throws NetworkError, also when the other side takes
  // nothing for as long as the socket was given.
  virtual void send(std::string_view bytes) = 0;
  // Of a stream: waits as long until all has reached the other machine, says that nothing more comes, and
  // waits until the other side ends the connection too, which it does when it has taken everything. One that
  // ends it before it was told to has broken off. Of datagrams: notices what came back as refused. Throws
  // NetworkError.
  virtual void finish() = 0;
};

enum class Transport : std::uint8_t { tcp, udp };

class Network {
 public:
  virtual ~Network() = default;
  // Throws NetworkError.
  virtual std::unique_ptr<Socket> connect(const Address& address, Transport transport,
                                          std::chrono::seconds patience) = 0;
  virtual std::string hostName() = 0;  // of this machine; empty without one
};
std::unique_ptr<Network> systemNetwork();

}  // namespace vordane::tools

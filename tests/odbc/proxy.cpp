#include "odbc/proxy.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <random>
#include <stdexcept>

#include "odbc/server_store.h"

namespace vordane::odbc {
namespace {

constexpr const char* socketName = ".s.PGSQL.5432";

sockaddr_un addressOf(const std::filesystem::path& folder) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = (folder / socketName).string();
  if (path.size() >= sizeof address.sun_path) throw std::logic_error("the path is too long for a socket");
  std::strcpy(address.sun_path, path.c_str());
  return address;
}

int connectToServer() {
  const int made = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_un address = addressOf(serverFolder() / "socket");
  if (connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return made;
  close(made);
  return -1;
}

bool sendAll(int to, const std::string& bytes) {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t step = send(to, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (step <= 0) return false;
    sent += static_cast<std::size_t>(step);
  }
  return true;
}

bool receiveAll(int from, std::string& bytes, std::size_t count) {
  const std::size_t begin = bytes.size();
  bytes.resize(begin + count);
  for (std::size_t got = 0; got < count;) {
    const ssize_t step = recv(from, bytes.data() + begin + got, count - got, 0);
    if (step <= 0) return false;
    got += static_cast<std::size_t>(step);
  }
  return true;
}

// The first message of a station has no letter in front of its length.
bool receiveMessage(int from, bool first, std::string& message) {
  message.clear();
  if (!receiveAll(from, message, first ? 4 : 5)) return false;
  const auto* length = reinterpret_cast<const unsigned char*>(message.data()) + (first ? 0 : 1);
  const std::size_t whole = (std::size_t{length[0]} << 24U) + (std::size_t{length[1]} << 16U) +
                            (std::size_t{length[2]} << 8U) + length[3];
  return whole >= 4 && receiveAll(from, message, whole - 4);
}

}  // namespace

struct Proxy::Wire {
  int station, server;
  std::atomic<bool> swallows = false;
  Wire(int one, int other) : station(one), server(other) {}
  ~Wire() {
    close(station);
    if (server >= 0) close(server);
  }
  Wire(const Wire&) = delete;
  Wire& operator=(const Wire&) = delete;
  void end() const {
    shutdown(station, SHUT_RDWR);
    if (server >= 0) shutdown(server, SHUT_RDWR);
  }
};

Proxy::Proxy() {
  folder_ =
      std::filesystem::temp_directory_path() / ("vordane-wire-" + std::to_string(std::random_device()()));
  std::filesystem::create_directory(folder_);
  listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_un address = addressOf(folder_);
  if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(listener_, 64) != 0)
    throw std::runtime_error("no socket");
  accepting_ = std::thread([this] { listen(); });
}

Proxy::~Proxy() {
  ending_ = true;
  shutdown(listener_, SHUT_RDWR);
  accepting_.join();
  close(listener_);
  {
    const std::lock_guard lock(mutex_);
    for (const auto& wire : wires_) wire->end();
  }
  for (std::thread& thread : threads_) thread.join();
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void Proxy::breakAt(Breakage what, int at, std::chrono::milliseconds delay) {
  const std::lock_guard lock(mutex_);
  what_ = what;
  at_ = at;
  delay_ = delay;
  messages_ = roundTrips_ = roundTripsUntilSaved_ = 0;
  broke_ = false;
}

void Proxy::listen() {
  for (;;) {
    const int station = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (station < 0) return;
    const auto wire = std::make_shared<Wire>(station, swallows_ ? -1 : connectToServer());
    const std::lock_guard lock(mutex_);
    wires_.push_back(wire);
    threads_.emplace_back([this, wire] { serve(wire, true); });
    if (wire->server >= 0) threads_.emplace_back([this, wire] { serve(wire, false); });
  }
}

void Proxy::serve(const std::shared_ptr<Wire>& wire, bool fromStation) {
  std::string message;
  bool first = fromStation;
  while (receiveMessage(fromStation ? wire->station : wire->server, first, message)) {
    first = false;
    if (!handOn(*wire, fromStation, std::move(message))) break;
  }
  // A wire that swallows says nothing of an end either.
  if (!wire->swallows && !swallows_) wire->end();
}

// A server ends each answer with "ready for the next question"; "COMMIT" stands before that of a saving.
void Proxy::count(bool fromStation, const std::string& message) {
  ++messages_;
  if (fromStation) return;
  if (message.front() == 'Z') ++roundTrips_;
  if (message.front() == 'C' && message.find("COMMIT") != message.npos)
    roundTripsUntilSaved_ = roundTrips_ + 1;
}

// False when the connection ends.
bool Proxy::handOn(Wire& wire, bool fromStation, std::string message) {
  std::chrono::milliseconds delay{};
  {
    const std::lock_guard lock(mutex_);
    count(fromStation, message);
    if (what_ != Breakage::none && messages_ == at_) {
      broke_ = true;
      if (what_ == Breakage::cut) return false;
      if (what_ == Breakage::drop) wire.swallows = true;
      if (what_ == Breakage::delay) delay = delay_;
    }
  }
  const auto end = std::chrono::steady_clock::now() + delay;
  while (!ending_ && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  if (wire.swallows || swallows_) return !ending_;
  return wire.server >= 0 && sendAll(fromStation ? wire.server : wire.station, message);
}

}  // namespace vordane::odbc

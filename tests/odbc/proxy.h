// A wire between a station and its server that counts what goes over it and breaks where it is told to. It
// understands of the server's protocol where a message ends, and no more.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace vordane::odbc {

class Proxy {
 public:
  // Listens in a folder of its own, which goes with the object, and hands on to the test's server.
  Proxy();
  ~Proxy();
  Proxy(const Proxy&) = delete;
  Proxy& operator=(const Proxy&) = delete;

  std::string folder() const { return folder_.string(); }  // to be named as SERVER

  enum class Breakage { none, cut, drop, delay };
  // The message that is number `at` from now on, of either side, from 1: with `cut` its connection ends in
  // front of it, with `drop` its connection swallows it and everything behind it, with `delay` it comes later
  // and everything of its connection behind it.
  void breakAt(Breakage what, int at, std::chrono::milliseconds delay = {});
  // Swallows everything of every connection, old or new; connections are still taken.
  void swallow(bool on) { swallows_ = on; }

  // Since the last breakAt: messages, and answers that ended with the server waiting for the next question.
  int messages() const { return messages_; }
  int roundTrips() const { return roundTrips_; }
  int roundTripsUntilSaved() const { return roundTripsUntilSaved_; }  // the latest saving's own among them
  bool broke() const { return broke_; }                               // the message came

 private:
  struct Wire;
  void listen();
  void serve(const std::shared_ptr<Wire>& wire, bool fromStation);
  void count(bool fromStation, const std::string& message);
  bool handOn(Wire& wire, bool fromStation, std::string message);

  std::filesystem::path folder_;
  int listener_ = -1;
  std::atomic<int> messages_ = 0, roundTrips_ = 0, roundTripsUntilSaved_ = 0;
  std::atomic<bool> swallows_ = false, broke_ = false, ending_ = false;
  std::mutex mutex_;
  Breakage what_ = Breakage::none;
  int at_ = 0;
  std::chrono::milliseconds delay_{};
  std::vector<std::shared_ptr<Wire>> wires_;
  std::vector<std::thread> threads_;
  std::thread accepting_;
};

}  // namespace vordane::odbc

// Where `follow` tells what is new.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

#include "following.h"
#include "network.h"
#include "syslog_message.h"

namespace vordane::tools {

// A line for each event at the end of a file of JSON lines. The file itself says what was told last, so each
// event stands in it once, whenever the process ends: a half line at its end is cut and told anew. A file
// that was moved away is begun again.
class FileOutlet : public Outlet {
 public:
  explicit FileOutlet(std::filesystem::path path) : path_(std::move(path)) {}
  // Throws ToolError when the file holds a line of another maker, or can't be read.
  void recall(FollowMark& mark) override;
  void tell(std::span<const Event> events, FollowMark& mark) override;

 private:
  std::filesystem::path path_;
};

// Lines to a stream, with what each event is there.
class StreamOutlet : public Outlet {
 public:
  using Line = std::function<std::string(const Event& event)>;
  StreamOutlet(std::ostream& stream, Line line) : stream_(stream), line_(std::move(line)) {}
  // A stream that takes nothing more is a ToolError.
  void tell(std::span<const Event> events, FollowMark& mark) override;

 private:
  std::ostream& stream_;
  Line line_;
};

// Syslog messages, with octet counting over TCP, each in a datagram over UDP. Over TCP each call is a
// connection of its own that the server has read to its end; over UDP nobody knows what arrives.
class SyslogOutlet : public Outlet {
 public:
  using Origin = std::function<SyslogOrigin()>;
  SyslogOutlet(Network& network, Address address, Transport transport, Origin origin)
      : network_(network), address_(std::move(address)), transport_(transport), origin_(std::move(origin)) {}
  void tell(std::span<const Event> events, FollowMark& mark) override;

  static constexpr std::size_t longestOverTcp = 8192, longestOverUdp = 2048;  // bytes that servers take
  static constexpr std::chrono::seconds patience{10};

 private:
  Network& network_;
  Address address_;
  Transport transport_;
  Origin origin_;
};

}  // namespace vordane::tools

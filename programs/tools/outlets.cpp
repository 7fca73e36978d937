#include "outlets.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>

#include "lasting_file.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using Object = nlohmann::json;

constexpr std::string_view lineStart = R"({"event":")";

std::string nameOf(const fs::path& path) {
  return text::toUtf8(path.u16string());
}

[[noreturn]] void notOurs(const fs::path& path) {
  throw ToolError(nameOf(path) +
                  ": it holds a line that 'follow' has not written. Name a file that is for this alone");
}

void takeFault(const Object& line, FollowMark& mark) {
  const auto number = line.at("number").get<std::int64_t>();
  if (number <= mark.reached) return;
  mark.reached = number;
  mark.told = {number, line.at("id").get<std::string>()};
}

void takeLamps(const Object& line, FollowMark& mark) {
  FollowMark::LampsSeen& seen = mark.lamps[line.at("exchangeNumber").get<std::int64_t>()];
  const auto sequence = line.at("sequence").get<std::int64_t>();
  if (sequence > seen.sequence)
    seen = {{line.at("major").get<bool>(), line.at("minor").get<bool>()}, sequence};
}

void take(const std::string& text, const fs::path& path, FollowMark& mark) try {
  const Object line = Object::parse(text);
  line.at("event") == "fault" ? takeFault(line, mark) : takeLamps(line, mark);
} catch (const Object::exception&) {
  notOurs(path);
}

// Where the lines begin that the mark may not know of: behind what it says, if a line ends there.
std::uintmax_t unknownFrom(std::ifstream& in, std::uintmax_t length, std::uintmax_t size) {
  if (length == 0 || length > size) return 0;
  in.seekg(static_cast<std::streamoff>(length - 1));
  return in.get() == '\n' ? length : 0;
}

bool isBeginningOfLine(std::string_view half) {
  return half.starts_with(lineStart.substr(0, half.size()));
}

}  // namespace

void FileOutlet::recall(FollowMark& mark) {
  std::error_code failure;
  if (!fs::exists(path_, failure)) {
    mark.length = 0;
    return;
  }
  const std::uintmax_t size = fs::file_size(path_, failure);
  std::ifstream in(path_, std::ios::binary);
  if (failure || !in) throw ToolError(nameOf(path_) + ": can't be read. Check the path and its rights");
  std::uintmax_t at = unknownFrom(in, mark.length, size);
  in.clear();
  in.seekg(static_cast<std::streamoff>(at));
  for (std::string line; std::getline(in, line); at += line.size() + 1) {
    if (in.eof()) {  // it was being written
      if (!isBeginningOfLine(line)) notOurs(path_);
      break;
    }
    take(line, path_, mark);
  }
  in.close();
  if (at < size) fs::resize_file(path_, at, failure);
  if (failure) throw ToolError(nameOf(path_) + ": can't be written. Check its rights");
  mark.length = at;
}

void FileOutlet::tell(std::span<const Event> events, FollowMark& mark) {
  std::string lines;
  for (const Event& event : events) lines += jsonOf(event) + '\n';
  if (!appendLasting(path_, lines))
    throw NotTold(nameOf(path_) + ": can't be written. Check its rights and the room on its disk");
  std::error_code failure;
  const std::uintmax_t size = fs::file_size(path_, failure);
  mark.length = failure ? 0 : size;
}

void StreamOutlet::tell(std::span<const Event> events, FollowMark&) {
  for (const Event& event : events) stream_ << line_(event) << '\n';
  if (!stream_.flush()) throw ToolError("nobody takes the output any more");
}

void SyslogOutlet::tell(std::span<const Event> events, FollowMark&) try {
  const bool tcp = transport_ == Transport::tcp;
  const SyslogOrigin origin = origin_();
  const auto socket = network_.connect(address_, transport_, patience);
  std::string all;
  for (const Event& event : events) {
    const std::string message = syslogOf(event, origin, tcp ? longestOverTcp : longestOverUdp);
    if (tcp)
      all += std::to_string(message.size()) + ' ' + message;
    else
      socket->send(message);
  }
  if (tcp) socket->send(all);
  socket->finish();
} catch (const NetworkError& failure) {
  throw NotTold(address_.host + " port " + address_.port + ": " + failure.what() + ". " +
                std::to_string(events.size()) + " message(s) wait and are sent again");
}

}  // namespace vordane::tools

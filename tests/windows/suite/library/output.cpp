#include "library/output.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {

Output::~Output() {
  if (reader_.joinable()) reader_.join();
}

com::Handle Output::open() {
  com::Handle write;
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  CreatePipe(pipe_.put(), write.put(), &inherited, 0);
  SetHandleInformation(pipe_.get(), HANDLE_FLAG_INHERIT, 0);
  reader_ = std::thread([this] { read(); });
  return write;
}

void Output::whenever(std::string beginning, std::function<void()> deed) {
  const std::lock_guard lock(mutex_);
  deeds_.emplace_back(std::move(beginning), std::move(deed));
}

void Output::read() {
  std::array<char, 4096> buffer;
  std::string open;
  DWORD count = 0;
  while (ReadFile(pipe_.get(), buffer.data(), buffer.size(), &count, nullptr) && count > 0) {
    open.append(buffer.data(), count);
    for (std::size_t end = open.find('\n'); end != std::string::npos; end = open.find('\n')) {
      std::string line = open.substr(0, end);
      if (line.ends_with('\r')) line.pop_back();
      open.erase(0, end + 1);
      take(std::move(line));
    }
  }
  if (!open.empty()) take(std::move(open));
  const std::lock_guard lock(mutex_);
  ended_ = true;
  news_.notify_all();
}

void Output::take(std::string line) {
  std::vector<std::function<void()>> due;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [beginning, deed] : deeds_)
      if (line.starts_with(beginning)) due.push_back(deed);
    lines_.push_back(std::move(line));
    news_.notify_all();
  }
  for (const auto& deed : due) deed();
}

std::vector<std::string> Output::lines() const {
  const std::lock_guard lock(mutex_);
  return lines_;
}

std::string Output::text() const {
  return joined(lines());
}

std::size_t Output::count(std::string_view beginning) const {
  const std::lock_guard lock(mutex_);
  return static_cast<std::size_t>(std::count_if(
      lines_.begin(), lines_.end(), [&](const std::string& line) { return line.starts_with(beginning); }));
}

bool Output::await(std::string_view beginning, std::size_t times) const {
  const auto come = [&] {
    return static_cast<std::size_t>(std::count_if(lines_.begin(), lines_.end(), [&](const std::string& line) {
             return line.starts_with(beginning);
           })) >= times;
  };
  std::unique_lock lock(mutex_);
  news_.wait_for(lock, std::chrono::milliseconds(patience()), [&] { return ended_ || come(); });
  return come();
}

}  // namespace vordane::suite

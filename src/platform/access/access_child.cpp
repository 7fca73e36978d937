#include "platform/access/access_child.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <new>
#include <optional>

#include "platform/access/value_stream.h"

namespace vordane::access {
namespace {

void writeWhole(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(pipeEnd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) _exit(1);  // the parent has gone
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

// The child's whole life: reads, sends, ends without running any of the parent's clean-up.
[[noreturn]] void serve(const ChildWork& work, int pipe, const Limits& limits) {
  if (!limitChild(pipe, limits)) _exit(1);
  std::string buffer;
  const auto send = [&](std::string_view bytes) {
    buffer.append(bytes);
    if (buffer.size() < 65536) return;
    writeWhole(buffer);
    buffer.clear();
  };
  StreamWriter writer(send);
  try {
    work.open();
    // A kernel without filters leaves the limits, which still hold.
    lockChild();
    work.read(send);
    writer.endOfFile();
  } catch (const std::bad_alloc&) {
    writer.error("reading it needs too much memory");
  } catch (const std::exception& failure) {
    writer.error(failure.what());
  }
  writeWhole(buffer);
  _exit(0);
}

class Child {
 public:
  Child(const std::string& name, const ChildWork& work, const Trust& trust)
      : name_(name), trust_(trust), waitLeft_(10LL * trust.patienceMilliseconds) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw AccessError("no pipe for the reader");
    process_ = fork();
    if (process_ < 0) {
      close(ends[0]);
      close(ends[1]);
      throw AccessError("no process for the reader");
    }
    if (process_ == 0) serve(work, ends[1], trust.limits);
    close(ends[1]);
    file_ = ends[0];
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    close(file_);
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }

  void receive(void* target, std::size_t size) {
    auto* out = static_cast<char*>(target);
    while (size > 0) {
      if (begin_ == end_) refill();
      const std::size_t part = std::min(size, end_ - begin_);
      std::memcpy(out, buffer_.data() + begin_, part);
      begin_ += part;
      out += part;
      size -= part;
    }
  }

 private:
  void refill() {
    await();
    const ssize_t got = read(file_, buffer_.data(), buffer_.size());
    if (got <= 0) throw AccessError(name_ + ": it is damaged, the reader crashed on it");
    begin_ = 0;
    end_ = static_cast<std::size_t>(got);
    received_ += end_;
    if (received_ > trust_.mostBytes)
      throw AccessError(name_ + ": it is damaged, more came of it than it can hold");
  }

  void await() {
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    pollfd wait{file_, POLLIN, 0};
    int ready = 0;
    do {
      ready = poll(&wait, 1, static_cast<int>(std::min<long long>(trust_.patienceMilliseconds, waitLeft_)));
    } while (ready < 0 && errno == EINTR);
    waitLeft_ -= std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin).count();
    if (ready == 0 || waitLeft_ < 0) throw AccessError(name_ + ": it is damaged, reading it came to no end");
  }

  std::string name_;
  const Trust trust_;
  long long waitLeft_;  // milliseconds
  pid_t process_ = -1;
  int file_ = -1;
  std::array<char, 65536> buffer_{};
  std::size_t begin_ = 0, end_ = 0;
  std::uint64_t received_ = 0;
};

// No file holds more: a Yes/No column costs one bit in it and two bytes on the way here, the worst of all.
std::uint64_t mostBytesOf(const std::string& path) {
  constexpr std::uint64_t forOneInTheFile = 32, least = 1U << 20U;
  std::error_code failure;
  const auto size = std::filesystem::file_size(path, failure);
  return failure ? least : least + forOneInTheFile * size;
}

}  // namespace

void readInChild(const std::string& name, const ChildWork& work, Visitor& visitor, const Trust& trust) {
  Child child(name, work, trust);
  readStream([&](void* buffer, std::size_t size) { child.receive(buffer, size); }, visitor);
}

void readAccessFileInChild(const std::string& path, Visitor& visitor, int patienceMilliseconds) {
  std::optional<AccessFile> file;
  const ChildWork work{[&] { file.emplace(path); },
                       [&](const ChildWork::Send& send) {
                         StreamWriter writer(send);
                         file->read(writer);
                       }};
  readInChild(path, work, visitor, {patienceMilliseconds, mostBytesOf(path), {}});
}

}  // namespace vordane::access

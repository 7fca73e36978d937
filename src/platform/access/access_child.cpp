#include "platform/access/access_child.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "platform/access/value_stream.h"

namespace vordane::access {
namespace {

void writeWhole(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) _exit(1);  // the parent has gone
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

// The child's whole life: reads, sends, ends without running any of the parent's clean-up.
[[noreturn]] void serve(const std::string& path, int file) {
  // The library tells its troubles to standard error; the error that is sent tells them better.
  if (const int quiet = open("/dev/null", O_WRONLY); quiet >= 0) dup2(quiet, STDERR_FILENO);
  std::string buffer;
  StreamWriter writer([&](std::string_view bytes) {
    buffer.append(bytes);
    if (buffer.size() < 65536) return;
    writeWhole(file, buffer);
    buffer.clear();
  });
  try {
    readAccessFile(path, writer);
    writer.endOfFile();
  } catch (const std::exception& failure) {
    writer.error(failure.what());
  }
  writeWhole(file, buffer);
  _exit(0);
}

class Child {
 public:
  Child(const std::string& path, int patience) : path_(path), patience_(patience) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw AccessError("no pipe for the reader");
    process_ = fork();
    if (process_ < 0) {
      close(ends[0]);
      close(ends[1]);
      throw AccessError("no process for the reader");
    }
    if (process_ == 0) serve(path, ends[1]);
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
    pollfd wait{file_, POLLIN, 0};
    int ready = 0;
    do {
      ready = poll(&wait, 1, patience_);
    } while (ready < 0 && errno == EINTR);
    if (ready == 0) throw AccessError(path_ + " is damaged: reading it came to no end");
    const ssize_t got = read(file_, buffer_.data(), buffer_.size());
    if (got <= 0) throw AccessError(path_ + " is damaged: the reader crashed on it");
    begin_ = 0;
    end_ = static_cast<std::size_t>(got);
  }

  std::string path_;
  int patience_;
  pid_t process_ = -1;
  int file_ = -1;
  std::array<char, 65536> buffer_{};
  std::size_t begin_ = 0, end_ = 0;
};

}  // namespace

void readAccessFileInChild(const std::string& path, Visitor& visitor, int patienceMilliseconds) {
  Child child(path, patienceMilliseconds);
  readStream([&](void* buffer, std::size_t size) { child.receive(buffer, size); }, visitor);
}

}  // namespace vordane::access

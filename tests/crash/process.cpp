#include "crash/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace vordane::crash {

struct Process::State {
  pid_t process = -1;
};

Process::Process(const std::vector<std::string>& arguments) : state_(std::make_unique<State>()) {
  std::string program = "/proc/self/exe";
  std::vector<std::string> words = arguments;
  std::vector<char*> pointers{program.data()};
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  state_->process = fork();
  if (state_->process < 0) throw std::runtime_error("no second process");
  if (state_->process == 0) {
    execv(program.c_str(), pointers.data());
    _exit(99);
  }
}

Process::~Process() {
  kill();
  wait();
}

void Process::kill() {
  if (state_->process > 0) ::kill(state_->process, SIGKILL);
}

int Process::wait() {
  if (state_->process <= 0) return -1;
  int status = 0;
  waitpid(state_->process, &status, 0);
  state_->process = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace vordane::crash

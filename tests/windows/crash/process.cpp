#include "crash/process.h"

#include <windows.h>

#include <stdexcept>

#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"

namespace vordane::crash {
namespace {

constexpr UINT killedCode = 9999;

std::wstring commandLine(const std::vector<std::string>& arguments) {
  const std::u16string own = windows::executablePath();
  std::wstring line = L"\"" + std::wstring(own.begin(), own.end()) + L"\"";
  for (const std::string& argument : arguments) {
    const std::u16string word = text::fromUtf8(argument);
    line += L" \"" + std::wstring(word.begin(), word.end()) + L"\"";
  }
  return line;
}

}  // namespace

struct Process::State {
  com::Handle process, thread;
};

Process::Process(const std::vector<std::string>& arguments) : state_(std::make_unique<State>()) {
  std::wstring line = commandLine(arguments);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
    throw std::runtime_error("no second process");
  state_->process = com::Handle(process.hProcess);
  state_->thread = com::Handle(process.hThread);
}

Process::~Process() {
  kill();
  wait();
}

void Process::kill() {
  TerminateProcess(state_->process.get(), killedCode);
}

int Process::wait() {
  WaitForSingleObject(state_->process.get(), INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(state_->process.get(), &code);
  return code == killedCode ? -1 : static_cast<int>(code);
}

}  // namespace vordane::crash

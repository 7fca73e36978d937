#include "library/program.h"

#include <cwchar>

#include <algorithm>

#include "kit/windows/running_programs.h"
#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace {

// Ends with this process, however that ends, and everything in it too.
HANDLE job() {
  static const com::Handle made = [] {
    com::Handle own(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(own.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return own;
  }();
  return made.get();
}

// As the system parts a command line into arguments.
void append(std::wstring& line, const std::wstring& argument) {
  if (!line.empty()) line += L' ';
  const bool plain = !argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos;
  if (plain) {
    line += argument;
    return;
  }
  line += L'"';
  std::size_t slashes = 0;
  for (const wchar_t letter : argument) {
    if (letter == L'"') line.append(slashes + 1, L'\\');
    slashes = letter == L'\\' ? slashes + 1 : 0;
    line += letter;
  }
  line.append(slashes, L'\\');
  line += L'"';
}

// Empty when it can't be had: then programs run where they are seen.
std::wstring unseenDesktop() {
  static const std::wstring made = [] {
    const HWINSTA own = GetProcessWindowStation();
    HWINSTA station = CreateWindowStationW(L"VordaneService", 0, WINSTA_ALL_ACCESS, nullptr);
    // A name of one's own needs an administrator.
    if (station == nullptr) station = CreateWindowStationW(nullptr, 0, WINSTA_ALL_ACCESS, nullptr);
    if (station == nullptr || !SetProcessWindowStation(station)) return std::wstring{};
    const HDESK desktop = CreateDesktopW(L"Default", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    SetProcessWindowStation(own);
    std::wstring name(256, L'\0');
    DWORD bytes = 0;
    if (desktop == nullptr || !GetUserObjectInformationW(station, UOI_NAME, name.data(), 512, &bytes))
      return std::wstring{};
    name.resize(std::wcslen(name.c_str()));
    return name + L"\\Default";
  }();
  return made;
}

bool isOurs(const std::wstring& file) {
  return kit::liesBelow(file, layout().root) || kit::liesBelow(file, layout().exchange) ||
         kit::liesBelow(file, layout().elsewhere);
}

constexpr DWORD endsWhenAsked = 10000;

}  // namespace

Program::Program(const Path& file, const Arguments& arguments, const Path& folder, Station station)
    : name_(utf8(file.filename())) {
  std::wstring line;
  append(line, file.wstring());
  for (const std::wstring& argument : arguments) append(line, argument);
  com::Handle write = output_->open();
  std::wstring desktop = station == Station::unseen ? unseenDesktop() : std::wstring{};
  if (station == Station::unseen && desktop.empty()) throw Failure("no window station that nobody sees");
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.lpDesktop = desktop.empty() ? nullptr : desktop.data();
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = write.get();
  start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED | CREATE_NO_WINDOW,
                      nullptr, folder.c_str(), &start, &started))
    throw Failure(utf8(file) + " can't be started: error " + std::to_string(GetLastError()));
  process_.reset(started.hProcess);
  const com::Handle thread(started.hThread);
  AssignProcessToJobObject(job(), process_.get());
  ResumeThread(thread.get());
}

Program::~Program() {
  if (process_) kill();
}

bool Program::runs() const {
  return WaitForSingleObject(process_.get(), 0) == WAIT_TIMEOUT;
}

int Program::wait() const {
  if (WaitForSingleObject(process_.get(), patience()) != WAIT_OBJECT_0)
    throw Failure(name_ + " did not end; it printed\n" + output_->text());
  DWORD code = 0;
  GetExitCodeProcess(process_.get(), &code);
  return static_cast<int>(code);
}

void Program::kill() const {
  TerminateProcess(process_.get(), 1);
  WaitForSingleObject(process_.get(), patience());
}

Ended run(const Path& file, const Program::Arguments& arguments, const Path& folder) {
  const Program program(file, arguments, folder);
  const int code = program.wait();
  program.output().await("\n");  // the pipe's end
  return {code, program.output().text()};
}

bool isSuiteProgram(DWORD processId) {
  return isOurs(kit::fileOf(processId));
}

std::vector<DWORD> suitePrograms(const std::wstring& name) {
  std::vector<DWORD> found;
  for (const auto& [number, running] : kit::runningPrograms())
    if ((name.empty() || _wcsicmp(running.c_str(), name.c_str()) == 0) && isSuiteProgram(number))
      found.push_back(number);
  return found;
}

void endSuitePrograms(const std::wstring& name) {
  for (const DWORD number : suitePrograms(name)) kit::endProgram(number, endsWhenAsked, patience());
}

void awaitGone(const std::wstring& name) {
  for (const DWORD number : suitePrograms(name)) {
    const com::Handle process(OpenProcess(SYNCHRONIZE, FALSE, number));
    if (process && WaitForSingleObject(process.get(), patience()) != WAIT_OBJECT_0)
      throw Failure(utf8(name) + " still runs");
  }
}

}  // namespace vordane::suite

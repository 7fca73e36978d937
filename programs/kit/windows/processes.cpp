#include "kit/windows/processes.h"

#include <cwchar>
#include <fstream>
#include <iterator>
#include <map>

#include "kit/windows/running_programs.h"
#include "text/utf8.h"

namespace vordane::kit {
namespace {

constexpr DWORD politeEndingTakes = 3000;
constexpr DWORD endingTakes = 20000;

std::wstring wide(const std::string& utf8) {
  const std::u16string text = text::fromUtf8(utf8);
  return {text.begin(), text.end()};
}

std::string readFile(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct LessIgnoringCase {
  bool operator()(const std::wstring& left, const std::wstring& right) const {
    return _wcsicmp(left.c_str(), right.c_str()) < 0;
  }
};
using Variables = std::map<std::wstring, std::wstring, LessIgnoringCase>;

Variables ownVariables() {
  Variables variables;
  wchar_t* const block = GetEnvironmentStringsW();
  for (const wchar_t* at = block; at != nullptr && *at != 0; at += std::wcslen(at) + 1) {
    const std::wstring entry(at);
    // The shell keeps each drive's folder under a name that begins with "=".
    const std::size_t end = entry.find(L'=', 1);
    if (end != std::wstring::npos) variables[entry.substr(0, end)] = entry.substr(end + 1);
  }
  if (block != nullptr) FreeEnvironmentStringsW(block);
  return variables;
}

com::Handle makeJob() {
  com::Handle job(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

com::File makeOutput(const Path& path) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return com::File(CreateFileW(path.c_str(), GENERIC_WRITE,
                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited,
                               CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// A 64-bit system may be without its 32-bit half.
bool runsHere(const Program& program) {
  if (program.words != "x86" || sizeof(void*) == 4) return true;
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(GetSystemWow64DirectoryW(folder.data(), MAX_PATH));
  return !folder.empty() && std::filesystem::exists(Path(folder) / "ntdll.dll");
}

}  // namespace

std::vector<std::pair<DWORD, std::wstring>> processesBelow(const Path& folder) {
  std::vector<std::pair<DWORD, std::wstring>> found;
  for (const auto& [number, running] : runningPrograms()) {
    std::wstring file = fileOf(number);
    if (number != GetCurrentProcessId() && liesBelow(file, folder))
      found.emplace_back(number, std::move(file));
  }
  return found;
}

std::vector<std::pair<DWORD, std::wstring>> processesNamed(const std::vector<std::wstring>& names) {
  std::vector<std::pair<DWORD, std::wstring>> found;
  for (const auto& [number, running] : runningPrograms())
    for (const std::wstring& name : names)
      if (number != GetCurrentProcessId() && _wcsicmp(running.c_str(), name.c_str()) == 0) {
        const std::wstring file = fileOf(number);
        found.emplace_back(number, file.empty() ? running : file);
      }
  return found;
}

WindowsProcesses::WindowsProcesses(Folders folders, std::function<void()> cleaned)
    : folders_(std::move(folders)),
      cleaned_(std::move(cleaned)),
      stop_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

Path WindowsProcesses::prepareFolder(const Program& program) const {
  const Path folder = folders_.work / program.words / program.name;
  std::filesystem::create_directories(folder / "temp");
  return folder;
}

// Where the tests find what they need: the suites in the work folder, under versions of the kit's own.
std::wstring WindowsProcesses::surroundings(const Program& program, const Path& folder) const {
  const Path built = folders_.kit / program.words;
  Variables variables = ownVariables();
  variables[L"TEMP"] = variables[L"TMP"] = (folder / "temp").wstring();
  variables[L"VORDANE_SOURCES"] = variables[L"VORDANE_SUITE_SOURCE"] = (folders_.kit / "sources").wstring();
  variables[L"VORDANE_BUILD"] = built.wstring();
  variables[L"GTEST_COLOR"] = L"no";
  variables[L"VORDANE_ARCH"] = wide(program.words);
  variables[L"VORDANE_SUITE_ROOT"] =
      (folders_.work / program.words / "QUILMAR32" / folders_.section).wstring();
  variables[L"VORDANE_SUITE_EXCHANGE"] = (folders_.work / program.words / "SIM").wstring();
  variables[L"VORDANE_SUITE_ELSEWHERE"] = (folders_.work / program.words / "ELSEWHERE").wstring();
  variables[L"VORDANE_SUITE_PROGRAMS"] = (built / "programs").wstring();
  variables[L"VORDANE_SUITE_HELPERS"] = (built / "tests" / "windows").wstring();
  variables[L"VORDANE_SUITE_OTHER_SECTION"] = std::to_wstring(std::stol(folders_.section.wstring()) + 1);
  std::wstring block;
  for (const auto& [name, value] : variables) block += name + L'=' + value + L'\0';
  return block + L'\0';
}

Ended WindowsProcesses::run(const Program& program, const std::vector<std::string>& arguments, int seconds) {
  if (WaitForSingleObject(stop_.get(), 0) == WAIT_OBJECT_0) return {.brokenOff = true};
  if (!runsHere(program))
    return {.started = false, .notHere = true, .output = "This system runs no 32-bit programs."};
  const Path folder = prepareFolder(program);
  const Path printed = folder / "printed.txt";
  const Path file = (folders_.kit / wide(program.path)).make_preferred();
  std::wstring line = L'"' + file.wstring() + L'"';
  for (const std::string& argument : arguments) line += L" \"" + wide(argument) + L'"';
  std::wstring block = surroundings(program, folder);
  com::File output = makeOutput(printed);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = start.hStdError = output.get();
  PROCESS_INFORMATION made{};
  const ULONGLONG begun = GetTickCount64();
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                      CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT | CREATE_NO_WINDOW, block.data(),
                      folder.c_str(), &start, &made))
    return {.started = false,
            .output = "The program could not be started: error " + std::to_string(GetLastError()) + "."};
  const com::Handle process(made.hProcess);
  const com::Handle thread(made.hThread);
  com::Handle job = makeJob();
  AssignProcessToJobObject(job.get(), process.get());
  ResumeThread(thread.get());

  const HANDLE either[] = {process.get(), stop_.get()};
  const DWORD came = WaitForMultipleObjects(2, either, FALSE, static_cast<DWORD>(seconds) * 1000);
  Ended ended{.inTime = came != WAIT_TIMEOUT, .brokenOff = came == WAIT_OBJECT_0 + 1, .output = {}};
  // Servers that it has started may be in the job too: they are asked first.
  if (came == WAIT_OBJECT_0) endLeftOvers();
  TerminateJobObject(job.get(), 1);
  if (came != WAIT_OBJECT_0) TerminateProcess(process.get(), 1);
  WaitForSingleObject(process.get(), endingTakes);
  GetExitCodeProcess(process.get(), &ended.exitCode);
  ended.milliseconds = static_cast<long long>(GetTickCount64() - begun);
  output.reset();
  ended.output = readFile(printed);
  return ended;
}

// Servers are started by the system, not by the test that uses them.
void WindowsProcesses::endLeftOvers() const {
  for (const Path& folder : {folders_.work, folders_.kit / "x64", folders_.kit / "x86"})
    for (const auto& [number, file] : processesBelow(folder))
      endProgram(number, politeEndingTakes, endingTakes);
}

void WindowsProcesses::cleanUp() {
  endLeftOvers();
  cleaned_();
}

}  // namespace vordane::kit

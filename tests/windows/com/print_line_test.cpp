// What a program with windows says when it is registered: to a pipe, on the console of whoever started it,
// or, where there is neither, to nobody. It never waits for somebody who isn't there.
#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <string>

#include "probe_library.h"
#include "server_process.h"
#include "text/utf8.h"

namespace vordane::test {
namespace {

constexpr DWORD endsInTime = 60000;

// A console of this program's own, or none, for as long as it lives.
class NoConsole {
 public:
  NoConsole() { FreeConsole(); }
  ~NoConsole() {
    SetStdHandle(STD_OUTPUT_HANDLE, output_);
    SetStdHandle(STD_ERROR_HANDLE, error_);
  }
  NoConsole(const NoConsole&) = delete;
  NoConsole& operator=(const NoConsole&) = delete;

 private:
  const HANDLE output_ = GetStdHandle(STD_OUTPUT_HANDLE), error_ = GetStdHandle(STD_ERROR_HANDLE);
};

class Console : NoConsole {
 public:
  Console() {
    made = AllocConsole() != FALSE;
    out_.reset(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_EXISTING, 0, nullptr));
  }
  ~Console() {
    out_.reset();
    FreeConsole();
  }
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  void write(const std::wstring& text) {
    DWORD written = 0;
    WriteConsoleW(out_.get(), text.c_str(), static_cast<DWORD>(text.size()), &written, nullptr);
  }
  int columns() const { return information().dwSize.X; }
  // Everything from the first row to the cursor, row behind row without a break.
  std::wstring text() const {
    const CONSOLE_SCREEN_BUFFER_INFO now = information();
    const auto length = static_cast<DWORD>(now.dwSize.X * (now.dwCursorPosition.Y + 1));
    std::wstring all(length, L'\0');
    DWORD read = 0;
    ReadConsoleOutputCharacterW(out_.get(), all.data(), length, {0, 0}, &read);
    all.resize(read);
    return all;
  }

  bool made = false;

 private:
  CONSOLE_SCREEN_BUFFER_INFO information() const {
    CONSOLE_SCREEN_BUFFER_INFO now{};
    GetConsoleScreenBufferInfo(out_.get(), &now);
    return now;
  }
  com::File out_;
};

// Starts the server's program with that for its output, null for none, and waits for its end; 259 when it
// does not come.
DWORD start(const std::wstring& arguments, DWORD flags, HANDLE output) {
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = output;
  PROCESS_INFORMATION process{};
  std::wstring line = L"\"" + serverPath() + L"\" " + arguments;
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &start,
                      &process))
    return STILL_ACTIVE;
  const com::Handle running(process.hProcess);
  const com::Handle thread(process.hThread);
  DWORD code = STILL_ACTIVE;
  if (WaitForSingleObject(running.get(), endsInTime) != WAIT_OBJECT_0) TerminateProcess(running.get(), code);
  GetExitCodeProcess(running.get(), &code);
  return code;
}

bool isRegistered() {
  return machineKeyExists(L"VordaneProbe.cProbe", KEY_WOW64_64KEY);
}

class PrintLine : public testing::TestWithParam<DWORD> {
 protected:
  void TearDown() override { start(L"/UnregServer", 0, nullptr); }
};

TEST_P(PrintLine, WithoutAnybodyToReadItItIsDoneAllTheSame) {
  const NoConsole nobody;
  EXPECT_EQ(start(L"/RegServer", GetParam(), nullptr), 0U);
  EXPECT_TRUE(isRegistered());
  EXPECT_EQ(start(L"/RegServer nonsense", GetParam(), nullptr), 2U);
  EXPECT_EQ(start(L"/UnregServer", GetParam(), INVALID_HANDLE_VALUE), 0U);
  EXPECT_FALSE(isRegistered());
}

TEST_P(PrintLine, APipeGetsUtf8) {
  const NoConsole nobody;
  com::Handle read;
  com::Handle write;
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  CreatePipe(read.put(), write.put(), &inherited, 0);
  SetHandleInformation(read.get(), HANDLE_FLAG_INHERIT, 0);
  EXPECT_EQ(start(L"/RegServer /JobAccount:\u0426\u0435\u0445", GetParam(), write.get()), 1U);
  write.reset();
  std::array<char, 512> buffer{};
  DWORD count = 0;
  ReadFile(read.get(), buffer.data(), buffer.size(), &count, nullptr);
  EXPECT_EQ(std::string(buffer.data(), count),
            "Not registered: there is no account \xD0\xA6\xD0\xB5\xD1\x85\r\n");
}

// The prompt's next line stands there already: the words begin below it. The pipe goes before the console.
TEST_P(PrintLine, TheStartersConsoleGetsItBelowItsPrompt) {
  Console console;
  ASSERT_TRUE(console.made);
  console.write(L"C:\\>");
  EXPECT_EQ(start(L"/RegServer /JobAccount:\u0426\u0435\u0445", GetParam(), nullptr), 1U);
  const std::wstring said = L"Not registered: there is no account \u0426\u0435\u0445";
  const std::wstring shown = console.text();
  EXPECT_EQ(shown.substr(0, 5), L"C:\\> ");
  EXPECT_EQ(shown.find(said), static_cast<std::size_t>(console.columns()))
      << text::toUtf8(com::fromWide(shown));
}

INSTANTIATE_TEST_SUITE_P(HoweverItWasStarted, PrintLine,
                         testing::Values(DWORD{0}, DWORD{CREATE_NO_WINDOW}, DWORD{DETACHED_PROCESS}));

}  // namespace
}  // namespace vordane::test

// Programs in jobs: their time, their output, what they leave running, and their surroundings.
#include "kit/windows/processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "child.h"
#include "kit/windows/running_programs.h"
#include "platform/windows/services/services.h"

namespace vordane::kit {
namespace {

using testing::HasSubstr;

Path ownFile() {
  const std::u16string own = windows::executablePath();
  return Path(std::wstring(own.begin(), own.end()));
}

class ProcessesTest : public testing::Test {
 protected:
  ProcessesTest() { ResetEvent(hangs_.get()); }
  ~ProcessesTest() override { std::filesystem::remove_all(folders_.work); }

  Ended run(const std::string& as, int seconds = 120) {
    return processes_.run(program_, {"--as=" + as}, seconds);
  }

  // Whoever held it is gone.
  static bool isFree() {
    const com::Handle held(OpenMutexW(SYNCHRONIZE, FALSE, heldByChild));
    return !held || WaitForSingleObject(held.get(), 20000) != WAIT_TIMEOUT;
  }

  com::Handle hangs_{CreateEventW(nullptr, TRUE, FALSE, childHangs)};
  Folders folders_{ownFile().parent_path(), std::filesystem::temp_directory_path() / "kit work", L"39000"};
  Program program_{sizeof(void*) == 8 ? "x64" : "x86", "children", ownFile().filename().string(), 60, false};
  int cleaned_ = 0;
  WindowsProcesses processes_{folders_, [this] { ++cleaned_; }};
};

TEST_F(ProcessesTest, OneThatDoesNotEndIsEndedInTime) {
  const Ended ended = run("hang", 1);
  EXPECT_TRUE(ended.started);
  EXPECT_FALSE(ended.inTime);
  EXPECT_GE(ended.milliseconds, 1000);
  EXPECT_TRUE(isFree());
}

TEST_F(ProcessesTest, WhatItHasStartedEndsWithIt) {
  const Ended ended = run("start");
  EXPECT_TRUE(ended.inTime);
  EXPECT_EQ(ended.exitCode, 5U);
  EXPECT_THAT(ended.output, HasSubstr("started another"));
  EXPECT_TRUE(isFree());
}

TEST_F(ProcessesTest, OneThatIsBrokenOffIsEndedAndNoOtherBegins) {
  std::thread stopper([this] {
    WaitForSingleObject(hangs_.get(), INFINITE);
    processes_.breakOff();
  });
  const Ended ended = run("hang");
  stopper.join();
  EXPECT_TRUE(ended.brokenOff);
  EXPECT_TRUE(ended.inTime);
  EXPECT_TRUE(isFree());
  EXPECT_TRUE(run("tell").brokenOff);
}

TEST_F(ProcessesTest, ItsSurroundingsAreTheKitsOwn) {
  const std::string words = program_.words;
  const std::string told = run("tell").output;
  const std::string work = folders_.work.string() + "\\" + words;
  for (const std::string& part :
       {"VORDANE_SUITE_ROOT=" + work + "\\QUILMAR32\\39000\r\n",
        std::string("VORDANE_SUITE_OTHER_SECTION=39001\r\n"),
        "VORDANE_SOURCES=" + folders_.kit.string() + "\\sources\r\n",
        "VORDANE_BUILD=" + folders_.kit.string() + "\\" + words + "\r\n",
        "TEMP=" + work + "\\children\\temp\r\n", "folder=" + work + "\\children\r\n"})
    EXPECT_THAT(told, HasSubstr(part));
}

TEST_F(ProcessesTest, OneThatIsMissingIsSaid) {
  program_.path = "none.exe";
  const Ended ended = run("tell");
  EXPECT_FALSE(ended.started);
  EXPECT_FALSE(ended.notHere);
  EXPECT_EQ(ended.output, "The program could not be started: error 2.");
}

// Servers run on when the program that used them has ended: those of the kit's folders go. One that can is
// asked to, so that the system does not send the next caller to it.
TEST_F(ProcessesTest, LeftOversOfTheFoldersAreEnded) {
  for (const auto& [as, code] : {std::pair(L"hang", 1U), std::pair(L"serve", 7U)}) {
    ResetEvent(hangs_.get());
    // Not the same file for both: the first may not have let go of its own.
    const Path copy = folders_.work / as / "server.exe";
    std::filesystem::create_directories(copy.parent_path());
    std::filesystem::remove(copy);
    std::filesystem::copy_file(ownFile(), copy);
    std::wstring line = L'"' + copy.wstring() + L"\" --as=" + as;
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION made{};
    ASSERT_TRUE(
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &made));
    const com::Handle server(made.hProcess);
    const com::Handle thread(made.hThread);
    WaitForSingleObject(hangs_.get(), INFINITE);
    ASSERT_EQ(processesBelow(folders_.work).size(), 1U);
    EXPECT_EQ(processesBelow(folders_.work)[0].first, made.dwProcessId);
    EXPECT_EQ(processesNamed({L"SERVER.EXE"}).size(), 1U);
    processes_.cleanUp();
    DWORD ended = 0;
    EXPECT_EQ(WaitForSingleObject(server.get(), 0), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(server.get(), &ended));
    EXPECT_EQ(ended, code);
  }
  EXPECT_EQ(cleaned_, 2);
}

TEST(LiesBelow, IsForWholeFolders) {
  EXPECT_TRUE(liesBelow(L"c:\\KIT\\x64\\a.exe", L"C:\\kit"));
  EXPECT_FALSE(liesBelow(L"C:\\kit2\\a.exe", L"C:\\kit"));
}

}  // namespace
}  // namespace vordane::kit

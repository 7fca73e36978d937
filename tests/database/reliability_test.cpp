// What may go wrong outside: other processes, damaged files, failing disks, no memory, a killed process.
// The numbers of rounds are short here; VORDANE_ROUNDS=n repeats n times as many.
#include <iostream>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <random>

#include "database/contract.h"
#include "database/embedded.h"
#include "database/failing_files.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

using database::addExchange;
using database::addFault;
using database::Fault;
using database::isStored;
using database::Layout;
using database::numberOfError;
using database::Value;

// SQLite takes its allocator before anything else uses it.
const bool installed = (failing::install(), true);

int rounds(int shortRun) {
  const char* factor = std::getenv("VORDANE_ROUNDS");
  return factor ? shortRun * std::atoi(factor) : shortRun;
}

std::u16string number(int value) {
  return text::fromUtf8(std::to_string(value));
}
Fault faultOf(int i) {
  return {std::int16_t(1 + i % 3),
          u"01",
          u"MJ",
          u"MP   ",
          u"2006/11/27 10:" + number(10 + i % 50),
          u"Title " + number(i) + u"\r\n" + std::u16string(200, u'x')};
}

std::string check(const std::u16string& path, const char* sql = "PRAGMA integrity_check") {
  sqlite3* handle = nullptr;
  std::string out;
  sqlite3_open(text::toUtf8(path).c_str(), &handle);
  const auto row = [](void* lines, int, char** values, char**) {
    return static_cast<std::string*>(lines)->append(values[0] ? values[0] : "Null"), 0;
  };
  if (sqlite3_exec(handle, sql, row, &out, nullptr) != SQLITE_OK) out = sqlite3_errmsg(handle);
  sqlite3_close(handle);
  return out;
}

// The index holds each row of the table and no other.
void expectWhole(const std::u16string& path) {
  EXPECT_EQ(check(path), "ok");
  EXPECT_EQ(
      check(path,
            "SELECT count(*) FROM FaultDisplay f WHERE (SELECT Stale FROM VordaneIndexState) = 0 AND NOT "
            "EXISTS (SELECT 1 FROM VordaneFaultIndex x WHERE x.Count = f.Count AND x.ID = f.ID)"),
      "0");
  EXPECT_EQ(
      check(path, "SELECT (SELECT count(*) FROM VordaneFaultIndex) - (SELECT count(*) FROM FaultDisplay)"),
      "0");
  EXPECT_EQ(check(path, "SELECT count(*) FROM FaultDisplay WHERE Fault IS NULL OR Description IS NULL"), "0");
}

class Child {
 public:
  template <class Work>
  explicit Child(Work work) : pid_(fork()) {
    if (pid_ != 0) return;
    int code = 99;
    try {
      code = work();
    } catch (const std::exception& failure) {
      std::cerr << "the child process failed: " << failure.what() << std::endl;
    }
    _exit(code);
  }
  void kill() { ::kill(pid_, SIGKILL); }
  int wait() {
    int status = 0;
    waitpid(pid_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_;
};

TEST(Opening, WhatIsNoDatabaseIsRefusedByNumber) {
  EmbeddedUnderTest under;
  const auto write = [&](const char* name, const std::string& bytes) {
    std::ofstream(under.folder() / name, std::ios::binary) << bytes;
    return (under.folder() / name).u16string();
  };
  EXPECT_EQ(numberOfError([&] { under.engine().open(write("empty", ""), false); }), 3343);
  EXPECT_EQ(numberOfError([&] { under.engine().open(write("text", std::string(5000, 'x')), false); }), 3343);
  EXPECT_EQ(numberOfError([&] {
              under.engine().open(
                  write("access", std::string("\0\1\0\0Standard Jet DB\0", 20) + std::string(4096, 0)), true);
            }),
            3343);
  EXPECT_EQ(numberOfError([&] {
              under.engine().open(write("head", std::string("SQLite format 3\0", 16) + std::string(4096, 7)),
                                  false);
            }),
            3343);
  EXPECT_EQ(numberOfError([&] { under.engine().open((under.folder() / "").u16string(), false); }), 3051);
  EXPECT_TRUE(isEmbeddedFile(under.make(Layout::faults)));
  EXPECT_FALSE(isEmbeddedFile((under.folder() / "text").u16string()));
}

TEST(Opening, WhatMayOnlyBeReadIsOpenedForReadingAlone) {
  EmbeddedUnderTest under;
  const std::u16string path = under.make(Layout::faults);
  addExchange(*under.engine().open(path, false), u"A");
  std::filesystem::permissions((under.folder() / "file1").parent_path(), std::filesystem::perms(0555));
  std::filesystem::permissions(std::filesystem::path(path), std::filesystem::perms(0444));
  // As an ordinary user: to root every file is writable.
  Child user([&] {
    if (setuid(65534) != 0) return 1;
    const int refused = numberOfError([&] { under.engine().open(path, false); });
    if (refused != 3051) return 2;
    const auto database = under.engine().open(path, true);
    return database->openRecordset(u"Select * FROM PBXList WHERE PBXName = \"A\"")->recordCount() == 1 ? 0
                                                                                                       : 3;
  });
  EXPECT_EQ(user.wait(), 0);
  std::filesystem::permissions((under.folder() / "file1").parent_path(), std::filesystem::perms(0755));
}

TEST(TwoProcesses, ALockEndsInAnErrorAndNotInALoss) {
  EmbeddedUnderTest under(Options{{}, 200, {}});
  const std::u16string path = under.make(Layout::faults);
  const auto database = under.engine().open(path, false);
  addExchange(*database, u"A");
  int ready[2], done[2];
  ASSERT_EQ(pipe(ready), 0);
  ASSERT_EQ(pipe(done), 0);
  Child other([&] {
    const auto second = makeEngine()->open(path, false);
    second->beginBatch();
    addFault(*second, {1});
    char byte = 'x';
    if (write(ready[1], &byte, 1) != 1 || read(done[0], &byte, 1) != 1) return 1;
    second->endBatch();
    return 0;
  });
  char byte;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  EXPECT_EQ(numberOfError([&] { addExchange(*database, u"B"); }), 3260);
  EXPECT_EQ(numberOfError([&] { database->beginBatch(); }), 3260);
  // A reader is not held up.
  EXPECT_EQ(database->openRecordset(u"Select * FROM PBXList WHERE PBXName = \"A\"")->recordCount(), 1);
  ASSERT_EQ(write(done[1], "x", 1), 1);
  EXPECT_EQ(other.wait(), 0);
  addExchange(*database, u"B");
  EXPECT_TRUE(isStored(*database, {1}));
  EXPECT_EQ(database->openRecordset(u"Select * FROM PBXList WHERE PBXName = \"B\"")->recordCount(), 1);
}

TEST(TwoProcesses, BothAddAndNothingIsLostOrTwice) {
  EmbeddedUnderTest under;
  const std::u16string path = under.make(Layout::faults);
  const auto work = [&] {
    const auto database = makeEngine()->open(path, false);
    for (int list = 0; list < 10; ++list) {
      database->beginBatch();
      for (int i = 0; i < 50; ++i) {
        const Fault fault = faultOf(list * 50 + i);
        if (!isStored(*database, fault)) addFault(*database, fault);
      }
      database->endBatch();
    }
    return 0;
  };
  Child first(work), second(work);
  EXPECT_EQ(first.wait(), 0);
  EXPECT_EQ(second.wait(), 0);
  EXPECT_EQ(check(path, "SELECT count(*) FROM FaultDisplay"), "500");
  expectWhole(path);
}

TEST(Damage, WhatIsFoundDamagedIsNotWrittenAgain) {
  EmbeddedUnderTest under;
  const std::u16string path = under.make(Layout::faults);
  {
    const auto database = under.engine().open(path, false);
    database->beginBatch();
    for (int i = 0; i < 300; ++i) addFault(*database, faultOf(i));
    database->endBatch();
  }
  const auto size = std::filesystem::file_size(std::filesystem::path(path));
  {
    std::fstream file(std::filesystem::path(path), std::ios::binary | std::ios::in | std::ios::out);
    for (std::uintmax_t page = 12; page < size / 4096; ++page) {
      file.seekp(static_cast<std::streamoff>(page * 4096));
      file << std::string(100, '\xFF');
    }
  }
  const auto database = under.engine().open(path, false);
  const int found = numberOfError([&] {
    for (const auto rows = database->openRecordset(u"Select * from FaultDisplay"); !rows->atEnd();
         rows->moveNext())
      rows->get(u"Description");
  });
  EXPECT_EQ(found, 3049);
  EXPECT_EQ(numberOfError([&] { addExchange(*database, u"A"); }), 3049);
}

// One ingestion of 30 faults and a deletion in a fresh file; what was reported as saved is remembered.
struct Scene {
  EmbeddedUnderTest under{Options{{}, 100, failing::fileLayer}};
  std::u16string path = under.make(Layout::faults);
  int saved = 0;

  int run() {
    return numberOfError([&] {
      const auto database = under.engine().open(path, false);
      int added = 0;
      database->beginBatch();
      for (int i = 0; i < 30; ++i) {
        if (isStored(*database, faultOf(i))) continue;
        addFault(*database, faultOf(i));
        added = i + 1;
        if (i % 10 != 9) continue;
        database->checkpoint();
        saved = added;
      }
      database->endBatch();
      saved = 30;
    });
  }
  void expectSound() {
    EXPECT_EQ(check(path), "ok");
    const auto database = under.engine().open(path, false);
    for (int i = 0; i < saved; ++i) ASSERT_TRUE(isStored(*database, faultOf(i))) << i;
    // The next list completes what is missing.
    database->beginBatch();
    for (int i = 0; i < 30; ++i)
      if (!isStored(*database, faultOf(i))) addFault(*database, faultOf(i));
    database->endBatch();
  }
};

TEST(Failure, EveryWriteOrSyncMayFail) {
  for (const bool lasting : {false, true}) {
    int n = 0;
    for (bool failed = true; failed; ++n) {
      Scene scene;
      failing::failFileAfter(n, lasting);
      scene.run();
      failed = failing::fileFailed();
      failing::failFileAfter(-1, false);
      scene.expectSound();
      expectWhole(scene.path);
      EXPECT_EQ(check(scene.path, "SELECT count(*) FROM FaultDisplay"), "30");
      if (HasFailure()) FAIL() << "after failure " << n;
    }
    EXPECT_GT(n, 20);
  }
}

TEST(Failure, EveryAllocationMayFail) {
  const int stride = rounds(1) > 1 ? 1 : 7;
  int n = 0;
  for (bool failed = true; failed; n += stride) {
    Scene scene;
    failing::failAllocationAfter(n);
    scene.run();
    failed = failing::allocationFailed();
    failing::failAllocationAfter(-1);
    scene.expectSound();
    expectWhole(scene.path);
    if (HasFailure()) FAIL() << "after failure " << n;
  }
  EXPECT_GT(n, 100);
}

}  // namespace
}  // namespace vordane::sqlite

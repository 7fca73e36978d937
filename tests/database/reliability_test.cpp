// What may go wrong outside: other processes, damaged files, failing disks, no memory, a killed process.
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <new>

#include "database/contract.h"
#include "database/embedded.h"
#include "database/failing_files.h"
#include "platform/sqlite/connection.h"
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

// The index holds each row of the table and no other, and the counts say so.
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
  EXPECT_EQ(
      check(path,
            "SELECT count(*) FROM (SELECT ID, count(*) FROM VordaneFaultIndex GROUP BY ID EXCEPT SELECT "
            "ID, Faults FROM VordaneFaultCounts)"),
      "0");
  EXPECT_EQ(check(path,
                  "SELECT coalesce((SELECT sum(Faults) FROM VordaneFaultCounts), 0) - (SELECT count(*) FROM "
                  "VordaneFaultIndex)"),
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
    std::fflush(nullptr);
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
    if (geteuid() == 0 && setuid(65534) != 0) return 1;
    const int refused = numberOfError([&] { under.engine().open(path, false); });
    if (refused != 3051) return 2;
    const auto database = under.engine().open(path, true);
    if (database->openRecordset(u"Select * FROM PBXList WHERE PBXName = \"A\"")->recordCount() != 1) return 3;
    // Such a file is guarded against damage as every other is.
    sqlite3_stmt* asked = nullptr;
    const Handle handle = openToRead(path, {});
    sqlite3_prepare_v2(handle.get(), "PRAGMA cell_size_check", -1, &asked, nullptr);
    const bool checks = sqlite3_step(asked) == SQLITE_ROW && sqlite3_column_int(asked, 0) == 1;
    sqlite3_finalize(asked);
    int defensive = 0;
    sqlite3_db_config(handle.get(), SQLITE_DBCONFIG_DEFENSIVE, -1, &defensive);
    return checks && defensive == 1 ? 0 : 4;
  });
  EXPECT_EQ(user.wait(), 0);
  std::filesystem::permissions((under.folder() / "file1").parent_path(), std::filesystem::perms(0755));
}

// Under some systems each lock is a question to another process, and a start opens four files.
TEST(Opening, AsksForAllThatItNeedsInAFewReadings) {
  EmbeddedUnderTest under{Options{.fileLayer = failing::fileLayer}};
  const auto readingsOf = [](const auto& work) {
    const long before = failing::readings();
    work();
    return failing::readings() - before;
  };
  std::unique_ptr<database::Database> database;
  const std::u16string texts = under.make(Layout::ownLanguage), faults = under.make(Layout::faults);
  EXPECT_EQ(readingsOf([&] { database = under.engine().open(texts, true); }), 3);
  EXPECT_EQ(readingsOf([&] { database = under.engine().open(texts, false); }), 3);
  EXPECT_LE(readingsOf([&] { database = under.engine().open(faults, false); }), 8);
  addExchange(*database, u"A");
  for (const char16_t description : std::u16string_view(u"abcdefghij")) {
    Fault fault;
    fault.description = description;
    addFault(*database, fault);
  }
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Desc, [Count] "
      u"Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc",
      std::vector<std::u16string_view>{u"Description"});
  ASSERT_EQ(rows->size(), 10U);
  std::vector<Value> values;
  const auto fetchAll = [&] {
    for (std::size_t i = 0; i < rows->size(); ++i) ASSERT_TRUE(rows->fetch(i, values));
  };
  EXPECT_GE(readingsOf(fetchAll), 10);
  EXPECT_EQ(readingsOf([&] {
              const auto together = rows->readTogether();
              fetchAll();
            }),
            1);
}

TEST(TwoProcesses, ALockEndsInAnErrorAndNotInALoss) {
  EmbeddedUnderTest under(Options{.lockWaitMilliseconds = 200});
  const std::u16string path = under.make(Layout::faults);
  const auto database = under.engine().open(path, false);
  addExchange(*database, u"A");
  int ready[2], done[2];
  ASSERT_EQ(pipe(ready), 0);
  ASSERT_EQ(pipe(done), 0);
  Child other([&] {
    const auto second = makeEngine(startup::databases)->open(path, false);
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
    const auto database = makeEngine(startup::databases)->open(path, false);
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

// One list of 30 faults for a fresh file, taken in as the product does: whatever goes wrong, the same
// database stays open for the next list. What was reported as saved is remembered.
struct Scene {
  EmbeddedUnderTest under{Options{.lockWaitMilliseconds = 100, .fileLayer = failing::fileLayer}};
  std::u16string path = (under.folder() / "scene").u16string();
  std::unique_ptr<database::Database> database;
  int saved = 0;

  Scene() {
    // Thousands of scenes begin with the same empty file.
    static const std::string empty = [this] {
      std::ifstream file(std::filesystem::path(under.make(Layout::faults)), std::ios::binary);
      return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    std::ofstream(std::filesystem::path(path), std::ios::binary) << empty;
  }

  void open() {
    if (!database) database = under.engine().open(path, false);
  }

  void takeList() {
    struct Batch {
      explicit Batch(database::Database& opened) : of(opened) { of.beginBatch(); }
      ~Batch() {
        if (open) numberOfError([&] { of.endBatch(); });
      }
      database::Database& of;
      bool open = true;
    } batch(*database);
    int added = 0;
    for (int i = 0; i < 30; ++i) {
      if (!isStored(*database, faultOf(i))) addFault(*database, faultOf(i));
      added = i + 1;
      if (i % 10 != 9) continue;
      database->checkpoint();
      saved = std::max(saved, added);
    }
    batch.open = false;
    database->endBatch();
    saved = 30;
  }

  // As the window does behind a list, in two orders of one exchange.
  std::size_t show() {
    const std::u16string_view columns[] = {u"Description"};
    std::size_t rows = 0;
    for (const char16_t* order :
         {u"[Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc",
          u"[Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc"}) {
      const auto list = database->openRowList(
          u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by " + std::u16string(order), columns);
      std::vector<Value> values;
      for (std::size_t i = 0; i < list->size(); ++i) rows += list->fetch(i, values) ? 1 : 0;
    }
    database->openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc")->isEmpty();
    return rows;
  }

  int run() {
    return numberOfError([&] {
      open();
      takeList();
      show();
    });
  }

  // Nothing reported as saved is missing, and the next list completes what is: in the database that was open
  // all the time, and as a newly opened one sees it.
  void expectWholeAfterTheNextList() {
    open();
    for (int i = 0; i < saved; ++i) ASSERT_TRUE(isStored(*database, faultOf(i))) << i;
    takeList();
    EXPECT_EQ(show(), 20U);
    EXPECT_EQ(database::column(*database, u"SELECT * FROM FaultDisplay Order by [Date] Desc", u"Date").at(0),
              "2006/11/27 10:39");
    database.reset();
    EXPECT_EQ(check(path), "ok");
    EXPECT_EQ(check(path, "SELECT count(*) FROM FaultDisplay"), "30");
    // The number of a fault that was taken back is not given again.
    EXPECT_EQ(check(path,
                    "SELECT NewestCount = (SELECT Count FROM FaultDisplay ORDER BY Date DESC LIMIT 1) AND "
                    "Stale = 0 FROM VordaneIndexState"),
              "1");
    EXPECT_EQ(check(path, "SELECT count(*) FROM VordaneFaultIndex JOIN FaultDisplay USING (Count)"), "30");
    EXPECT_EQ(check(path, "SELECT count(*) FROM VordaneFaultIndex"), "30");
    expectWhole(path);
  }
};

// The n-th call fails for every n, until none is left to fail.
void failEveryCall(bool lasting, bool alsoReading) {
  int n = 0;
  for (bool failed = true; failed; ++n) {
    Scene scene;
    failing::failFileAfter(n, lasting, alsoReading);
    scene.run();
    failed = failing::fileFailed();
    failing::failFileAfter(-1, false);
    scene.expectWholeAfterTheNextList();
    if (testing::Test::HasFailure()) FAIL() << "after failure " << n;
  }
  EXPECT_GT(n, alsoReading ? 120 : 60);
  std::printf("%d calls failed, one after the other\n", n - 1);
}

TEST(Failure, EveryWriteOrSyncMayFailOnce) {
  failEveryCall(false, false);
}
TEST(Failure, EveryWriteOrSyncMayFailForGood) {
  failEveryCall(true, false);
}
TEST(Failure, EveryCallForAFileMayFailOnce) {
  failEveryCall(false, true);
}
TEST(Failure, EveryCallForAFileMayFailForGood) {
  failEveryCall(true, true);
}

// A receipt is kept or not, whole, and the faults are none the worse for it.
void failWhileAReceiptIsKept(bool lasting) {
  int n = 0;
  for (bool failed = true; failed; ++n) {
    Scene scene;
    scene.run();
    database::Receipt receipt;
    receipt.exchange = u"PBX-1";
    receipt.entries = {{u"EA1", u"00", u"CCC", u"OK"}};
    failing::failFileAfter(n, lasting, true);
    const bool kept = numberOfError([&] { scene.database->receipts()->keep(receipt); }) == 0;
    failed = failing::fileFailed();
    failing::failFileAfter(-1, false);
    const auto count = [&] {
      int receipts = 0;
      scene.database->receipts()->read([&](const database::Receipt& one) {
        EXPECT_EQ(one.entries, receipt.entries);
        ++receipts;
      });
      return receipts;
    };
    const int before = count();
    EXPECT_TRUE(kept ? before == 1 : before <= 1);
    scene.database->receipts()->keep(receipt);
    EXPECT_EQ(count(), before + 1);
    scene.expectWholeAfterTheNextList();
    if (testing::Test::HasFailure()) FAIL() << "after failure " << n;
  }
  EXPECT_GT(n, 5);
  std::printf("%d calls failed, one after the other\n", n - 1);
}

TEST(Failure, EveryCallMayFailOnceWhileAReceiptIsKept) {
  failWhileAReceiptIsKept(false);
}
TEST(Failure, EveryCallMayFailForGoodWhileAReceiptIsKept) {
  failWhileAReceiptIsKept(true);
}

// Shown within the batch, then taken back with it: what is kept of the order goes along.
TEST(Failure, WhatWasTakenBackIsShownNoLonger) {
  Scene scene;
  scene.open();
  database::Database& database = *scene.database;
  addFault(database, {1});
  const std::u16string_view columns[] = {u"Count"};
  const auto rows = [&] {
    return database
        .openRowList(
            u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Desc, [Count] Desc, [Fault] Desc, "
            u"[Alarm] Desc, [CPU] Desc, [Description] Desc",
            columns)
        ->size();
  };
  EXPECT_EQ(rows(), 1U);
  database.beginBatch();
  addFault(database, {1, u"02"});
  EXPECT_EQ(rows(), 2U);
  failing::failFileAfter(0, true);
  EXPECT_NE(numberOfError([&] { database.endBatch(); }), 0);
  failing::failFileAfter(-1, false);
  EXPECT_EQ(rows(), 1U);
  addFault(database, {1, u"03"});
  EXPECT_EQ(rows(), 2U);
}

// Whoever is not root is so in a world of his own.
bool unshareMounts() {
  if (unshare(CLONE_NEWNS) == 0) return true;
  const std::string user = std::to_string(geteuid()), group = std::to_string(getegid());
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
  std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
  return true;
}

// A small disk, seen by this process alone, at the folder that temporary files are made in.
bool mountSmallDisk(const std::filesystem::path& place) {
  if (!unshareMounts()) return false;
  mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
  return mount("none", place.c_str(), "tmpfs", 0, "size=2m") == 0 && setenv("TMPDIR", place.c_str(), 1) == 0;
}

// A file that leaves `bytes` free where it stands, as long as it lives.
class Filler {
 public:
  Filler(std::filesystem::path path, std::size_t bytes) : path_(std::move(path)) {
    struct statvfs disk;
    statvfs(path_.parent_path().c_str(), &disk);
    const std::size_t free = disk.f_bavail * disk.f_bsize;
    std::ofstream(path_, std::ios::binary) << std::string(free - std::min(bytes, free), 'x');
  }
  ~Filler() { std::filesystem::remove(path_); }
  Filler(const Filler&) = delete;
  Filler& operator=(const Filler&) = delete;

 private:
  std::filesystem::path path_;
};

// With room for n more pages, from none to all that an ingestion takes.
int ingestOnFullDisks() {
  std::map<int, int> ends;  // how often, by the error's number
  for (std::size_t pages = 0; pages < 60 && !testing::Test::HasFailure(); ++pages) {
    SCOPED_TRACE(std::to_string(pages) + " pages free");
    Scene scene;
    {
      const Filler filler(scene.under.folder() / "filler", pages * 4096);
      ++ends[scene.run()];
    }
    scene.expectWholeAfterTheNextList();
  }
  EXPECT_GT(ends[0], 0) << "enough room";
  EXPECT_GT(ends[3026], 10) << "told as a full disk";
  EXPECT_EQ(ends.size(), 2U) << "and as nothing else";
  for (const auto& [number, times] : ends) std::printf("error %d: %d times\n", number, times);
  return testing::Test::HasFailure() ? 1 : 0;
}

TEST(Failure, ADiskThatFillsUpLosesNothingThatWasSaved) {
  constexpr int notAllowed = 77;
  const TemporaryFolder place;
  Child process([&] { return mountSmallDisk(place / "") ? ingestOnFullDisks() : notAllowed; });
  const int code = process.wait();
  if (code == notAllowed) GTEST_SKIP() << "no file system may be mounted here";
  EXPECT_EQ(code, 0);
}

// Every 7th in a short run, all of them with VORDANE_EVERY_ALLOCATION=1.
void failEveryAllocation(void (*failAfter)(long)) {
  const int stride = std::getenv("VORDANE_EVERY_ALLOCATION") != nullptr ? 1 : 7;
  int n = 0;
  for (bool failed = true; failed; n += stride) {
    Scene scene;
    failAfter(n);
    try {
      scene.run();
    } catch (const std::bad_alloc&) {
      // The engine's own requests end in this one, which the window's three outer walls stop.
    }
    failed = failing::allocationFailed();
    failAfter(-1);
    scene.expectWholeAfterTheNextList();
    if (testing::Test::HasFailure()) FAIL() << "after failure " << n;
  }
  EXPECT_GT(n, 100);
  std::printf("%d allocations failed, one after the other\n", n / stride - 1);
}

TEST(Failure, EveryAllocationOfSqliteMayFail) {
  failEveryAllocation(failing::failAllocationAfter);
}
TEST(Failure, EveryAllocationOfTheEngineMayFail) {
  failEveryAllocation(failing::failOwnAllocationAfter);
}

}  // namespace
}  // namespace vordane::sqlite

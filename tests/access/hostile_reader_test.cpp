// A file that has taken over the process that reads it: whatever that says or does is an error here, at once.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

#include "access/recording_visitor.h"
#include "platform/access/access_child.h"
#include "platform/access/cage.h"
#include "platform/access/value_stream.h"

namespace vordane::access {
namespace {

// Bytes of the stream, told one by one.
class Bytes {
 public:
  template <class T>
  Bytes& add(T value) {
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    return *this;
  }
  Bytes& text(std::u16string_view words) {
    add(static_cast<std::uint32_t>(words.size()));
    bytes_.append(reinterpret_cast<const char*>(words.data()), words.size() * sizeof(char16_t));
    return *this;
  }
  // A table "T" of `rows` rows with one column "C".
  Bytes& table(std::uint32_t rows, ColumnType type, std::uint8_t autoNumber = 0) {
    add(std::uint8_t{1}).text(u"T").add(rows).add(std::int32_t{0}).add(std::uint32_t{1});
    return text(u"C").add(type).add(std::int32_t{0}).add(autoNumber);
  }
  Bytes& row() { return add(std::uint8_t{2}); }
  Bytes& endTable() { return add(std::uint8_t{3}); }
  operator std::string_view() const { return bytes_; }

 private:
  std::string bytes_;
};

class HostileReader : public testing::Test {
 protected:
  // What becomes of it; "" when it is believed.
  std::string outcome(const std::function<void(const ChildWork::Send&)>& read,
                      Trust trust = {20000, 1U << 20U, {}}) {
    heard = {};
    try {
      readInChild("FAULT.MDB", {[] {}, read}, heard, trust);
    } catch (const AccessError& failure) {
      return failure.what();
    }
    return {};
  }
  std::string said(std::string_view bytes) {
    return outcome([&](const ChildWork::Send& send) { send(bytes); });
  }

  RecordingVisitor heard;
};

[[noreturn]] void work() {
  for (volatile unsigned char step = 0;;) static_cast<void>(step);
}

constexpr const char* crashed = "FAULT.MDB: it is damaged, the reader crashed on it";

TEST_F(HostileReader, IsBelievedWhenItTellsAWholeTable) {
  EXPECT_EQ(
      said(Bytes().table(1, ColumnType::boolean).row().add(std::uint8_t{3}).add(std::uint8_t{1}).endTable()),
      "");
  EXPECT_EQ(heard.tables.at(u"T").rows, (std::vector<std::vector<Value>>{{true}}));
}

TEST_F(HostileReader, OnlyNoAndYesAreYesNo) {
  for (const int byte : {2, 3, 128, 255}) {
    const auto wrong = static_cast<std::uint8_t>(byte);
    EXPECT_EQ(said(Bytes().table(1, ColumnType::boolean).row().add(std::uint8_t{3}).add(wrong).endTable()),
              "the reader sent a Yes/No that is neither");
    EXPECT_EQ(said(Bytes().table(0, ColumnType::boolean, wrong).endTable()),
              "the reader sent a Yes/No that is neither");
  }
}

TEST_F(HostileReader, GarbageIsNoFile) {
  for (const char* garbage : {"\xFF", "\x06", "garbage", "\x02", "\x03"})
    EXPECT_NE(said(garbage), "") << garbage;
  EXPECT_EQ(said(std::string(100000, '\xEE')), "the reader sent something unknown");
  EXPECT_EQ(said(Bytes().row()), "the reader sent a row outside a table");
  EXPECT_EQ(said(Bytes().endTable()), "the reader ended a table outside one");
  EXPECT_EQ(said(Bytes().table(0, ColumnType::byte)), "the reader ended inside a table");
  EXPECT_EQ(said(Bytes().table(0, ColumnType::byte).table(0, ColumnType::byte)),
            "the reader sent a table inside another");
  EXPECT_EQ(said(Bytes().table(0, static_cast<ColumnType>(9)).endTable()),
            "the reader sent a column of unknown type");
  EXPECT_EQ(said(Bytes().table(1, ColumnType::byte).row().add(std::uint8_t{2})),
            "the reader sent a value of unknown type");
  EXPECT_EQ(said(Bytes().add(std::uint8_t{4}).text(u"its own words")), "its own words");
}

TEST_F(HostileReader, ATableHasTheRowsAndValuesThatItSays) {
  const auto byteRow = [](Bytes& bytes) -> Bytes& {
    return bytes.row().add(std::uint8_t{4}).add(std::uint8_t{7});
  };
  Bytes more, fewer, other;
  byteRow(byteRow(more.table(1, ColumnType::byte)));
  EXPECT_EQ(said(more.endTable()), "the reader sent more rows than the table has");
  byteRow(fewer.table(2, ColumnType::byte));
  EXPECT_EQ(said(fewer.endTable()), "the reader sent fewer rows than the table has");
  byteRow(other.table(1, ColumnType::text));
  EXPECT_EQ(said(other.endTable()), "the reader sent a value that does not fit its column");
  EXPECT_EQ(said(Bytes().table(1, ColumnType::boolean).row().add(std::uint8_t{1}).endTable()),
            "the reader sent a value that does not fit its column");  // a Yes/No is never Null
  for (const double days : {-657435.0, 2958466.0, 1e300, std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(said(Bytes().table(1, ColumnType::dateTime).row().add(std::uint8_t{11}).add(days).endTable()),
              "a date is beyond the calendar");
}

TEST_F(HostileReader, LengthsThatNothingFollowsCostNothing) {
  const auto withText = [](std::uint32_t length) {
    return Bytes().table(1, ColumnType::text).row().add(std::uint8_t{9}).add(length);
  };
  EXPECT_EQ(said(withText(0xFFFFFFFF)), "the reader sent a text of impossible length");
  EXPECT_EQ(said(withText(256U * 1024 * 1024 + 1)), "the reader sent a text of impossible length");
  EXPECT_EQ(said(withText(256U * 1024 * 1024)), crashed);  // it ends before its text does
  EXPECT_EQ(said(Bytes().add(std::uint8_t{1}).add(std::uint32_t{257})),
            "the reader sent a text of impossible length");
  EXPECT_EQ(said(Bytes().add(std::uint8_t{1}).text(u"T").add(0U).add(0).add(std::uint32_t{257})),
            "the reader sent too many columns");
  EXPECT_EQ(said(Bytes()
                     .add(std::uint8_t{1})
                     .text(u"T")
                     .add(0U)
                     .add(0)
                     .add(1U)
                     .text(u"C")
                     .add(ColumnType::text)
                     .add(-1)),
            "the reader sent a column of impossible size");
}

TEST_F(HostileReader, EndlessDataEnds) {
  const Bytes table = Bytes().table(0xFFFFFFFF, ColumnType::byte);
  EXPECT_EQ(outcome([&](const ChildWork::Send& send) {
              send(table);
              for (;;) send(Bytes().row().add(std::uint8_t{1}));
            }),
            "FAULT.MDB: it is damaged, more came of it than it can hold");
  EXPECT_LT(heard.tables.at(u"T").rows.size(), 600000U);
}

TEST_F(HostileReader, SilenceAndBusynessEnd) {
  const auto waits = [](const ChildWork::Send&) {
    for (;;) pause();
  };
  if (!sanitized) {  // waiting is nothing that it may do
    EXPECT_EQ(outcome(waits, {60000, 1000, {}}), crashed);
  }
  EXPECT_EQ(outcome([](const ChildWork::Send&) { work(); }, {200, 1000, {}}),
            "FAULT.MDB: it is damaged, reading it came to no end");
  Trust second{60000, 1000, {}};
  second.limits.processorSeconds = 1;
  EXPECT_EQ(outcome([](const ChildWork::Send&) { work(); }, second), crashed);
}

TEST_F(HostileReader, MemoryIsLimited) {
  if (sanitized) GTEST_SKIP() << "no limit under the sanitizers";
  Trust little;
  little.limits.memory = 512U * 1024 * 1024;
  EXPECT_EQ(outcome([](const ChildWork::Send&) { std::vector<char> much(1024U * 1024 * 1024, 'x'); }, little),
            "reading it needs too much memory");
}

// Each would go unnoticed: what it sends behind it is a whole, empty file.
struct Deed {
  const char* name;
  void (*run)();
};
class HostileDeed : public HostileReader, public testing::WithParamInterface<Deed> {};

TEST_P(HostileDeed, EndsIt) {
  if (sanitized) GTEST_SKIP() << "no lock under the sanitizers";
  EXPECT_EQ(outcome([](const ChildWork::Send&) { GetParam().run(); }), crashed);
}

INSTANTIATE_TEST_SUITE_P(Everything, HostileDeed,
                         testing::Values(Deed{"socket", [] { socket(AF_INET, SOCK_STREAM, 0); }},
                                         Deed{"local_socket", [] { socket(AF_UNIX, SOCK_STREAM, 0); }},
                                         Deed{"open", [] { open("/etc/hostname", O_RDONLY); }},
                                         Deed{"create",
                                              [] { open("/tmp/vordane-hostile", O_WRONLY | O_CREAT, 0600); }},
                                         Deed{"remove", [] { unlink("/tmp/vordane-hostile"); }},
                                         Deed{"program", [] { execl("/bin/true", "true", nullptr); }},
                                         Deed{"process",
                                              [] {
                                                if (fork() == 0) _exit(0);
                                              }},
                                         Deed{"signal", [] { kill(getppid(), 0); }},
                                         Deed{"runnable_memory",
                                              [] {
                                                mmap(nullptr, 4096, PROT_READ | PROT_EXEC,
                                                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                                              }},
                                         Deed{"another_file", [] { write(4, "x", 1); }}),
                         [](const auto& deed) { return std::string(deed.param.name); });

TEST_F(HostileReader, HasNoneOfTheFilesThatItsParentHasOpen) {
  std::FILE* const mine = std::tmpfile();
  ASSERT_NE(mine, nullptr);
  std::fputs("secret", mine);
  std::rewind(mine);
  const int file = dup2(fileno(mine), 90);
  EXPECT_EQ(outcome([&](const ChildWork::Send&) {
              char byte = 0;
              if (read(file, &byte, 1) >= 0) throw AccessError("it can be read");
            }),
            "");
  EXPECT_EQ(outcome([&](const ChildWork::Send&) {
              char byte = 0;
              if (read(STDIN_FILENO, &byte, 1) > 0) throw AccessError("it reads what its parent is given");
            }),
            "");
  close(file);
  std::fclose(mine);
}

}  // namespace
}  // namespace vordane::access

#include "platform/engine_choice.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "places.h"

namespace vordane::database {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

// An engine that says its name when it is asked.
class NamedEngine : public Engine {
 public:
  NamedEngine(int number, bool& readOnly) : number_(number), readOnly_(readOnly) {}
  std::unique_ptr<Database> open(std::u16string_view path, bool readOnly) override {
    readOnly_ = readOnly;
    throw DatabaseError(number_, std::u16string(path));
  }

 private:
  int number_;
  bool& readOnly_;
};

class EngineChoice : public testing::Test {
 protected:
  static constexpr int access = 1, embedded = 2, server = 3;

  EngineChoice() { fs::create_directory(folder); }
  ~EngineChoice() override { fs::remove_all(folder); }

  std::u16string file(const std::string& bytes) const {
    const fs::path path = folder / u"Ж.MDB";
    std::ofstream(path, std::ios::binary) << bytes;
    return path.u16string();
  }
  // The engine that was asked, or the choice's own error.
  int answer(const std::u16string& path, bool readOnly = false, bool withServer = true) {
    const auto choice =
        makeEngineChoice(std::make_unique<NamedEngine>(access, askedReadOnly),
                         std::make_unique<NamedEngine>(embedded, askedReadOnly), {},
                         withServer ? std::make_unique<NamedEngine>(server, askedReadOnly) : nullptr);
    try {
      choice->open(path, readOnly);
    } catch (const DatabaseError& error) {
      EXPECT_EQ(error.description(), path);
      return error.number();
    }
    return 0;
  }

  fs::path folder = fs::temp_directory_path() / ("vordane-choice-" + std::to_string(std::random_device()()));
  bool askedReadOnly = false;
};

TEST_F(EngineChoice, AccessFilesGoToTheAccessEngine) {
  EXPECT_EQ(answer(file("\0\1\0\0Standard Jet DB\0and more"s)), access);
  EXPECT_EQ(answer(file("\0\1\0\0Standard ACE DB\0and more"s)), access);
  EXPECT_EQ(answer((test::dataFolder() / "access" / "FAULT-empty.MDB").u16string()), access);
}

TEST_F(EngineChoice, EmbeddedFilesGoToTheEmbeddedEngine) {
  EXPECT_EQ(answer(file("SQLite format 3\0and more"s)), embedded);
  EXPECT_FALSE(askedReadOnly);
  EXPECT_EQ(answer(file("SQLite format 3\0and more"s), true), embedded);
  EXPECT_TRUE(askedReadOnly);
}

TEST_F(EngineChoice, DataSourcesGoToTheEngineForServers) {
  for (const std::string& bytes : {"[ODBC]\r\nDRIVER=x"s, "[odbc]"s, "\xEF\xBB\xBF[Odbc]\n"s}) {
    EXPECT_EQ(answer(file(bytes)), server) << bytes;
    EXPECT_EQ(fileKind(file(bytes)), FileKind::dataSource);
  }
  EXPECT_EQ(answer(file("[ODBC]"), true), server);
  EXPECT_TRUE(askedReadOnly);
  EXPECT_EQ(answer(file("[ODBC]"), false, false), 3343) << "a program without such an engine";
}

TEST_F(EngineChoice, AMissingFileIsNotFound) {
  EXPECT_EQ(answer((folder / "missing.mdb").u16string()), 3024);
  EXPECT_EQ(answer(folder.u16string()), 3024);
}

TEST_F(EngineChoice, AnythingElseIsOfNoKnownFormat) {
  for (const std::string& bytes :
       {""s, "S"s, "SQLite format 3"s, "SQLite format 2\0"s, "\0\1\0\0Standard Jet D"s, "Standard Jet DB"s,
        "PK\3\4"s, "[ODBC"s, "{ODBC]"s, " [ODBC]"s, "\xEF\xBB[ODBC]"s, std::string(5000, '\0')})
    EXPECT_EQ(answer(file(bytes)), 3343) << bytes;
}

// Another program that has the file exclusively closes it again, or not in time.
TEST_F(EngineChoice, AFileThatIsHeldIsWaitedFor) {
  const std::u16string path = file("");
  int asked = 0, refusals = 3;
  const auto openHeld = [&] {
    const Held held{[&](std::u16string_view which) {
                      EXPECT_EQ(which, path);
                      if (++asked > refusals) file("SQLite format 3\0and more"s);
                      return true;
                    },
                    std::chrono::milliseconds(50)};
    const auto choice = makeEngineChoice(std::make_unique<NamedEngine>(access, askedReadOnly),
                                         std::make_unique<NamedEngine>(embedded, askedReadOnly), held);
    try {
      choice->open(path, false);
    } catch (const DatabaseError& error) {
      return error.number();
    }
    return 0;
  };
  EXPECT_EQ(openHeld(), embedded);
  EXPECT_EQ(asked, 4);
  EXPECT_EQ(openHeld(), embedded);
  EXPECT_EQ(asked, 4) << "nobody is asked about a file that can be read";
  file("");
  refusals = 1'000'000;
  EXPECT_EQ(openHeld(), 3260);
  EXPECT_GT(asked, 5);
}

TEST_F(EngineChoice, TheKindIsInTheFirstBytesAlone) {
  EXPECT_EQ(fileKind(file("")), FileKind::unknown);
  EXPECT_EQ(fileKind(file("SQLite format 3\0"s)), FileKind::embedded);
  EXPECT_EQ(fileKind(file("\0\1\0\0Standard Jet DB"s)), FileKind::access);
  EXPECT_EQ(fileKind(u""), FileKind::missing);
}

}  // namespace
}  // namespace vordane::database

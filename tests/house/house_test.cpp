// Rules of the house that the compiler can't hold, read from the sources themselves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "places.h"
#include "startup/databases.h"

namespace vordane::test {
namespace {

namespace fs = std::filesystem;

struct Include {
  fs::path file;  // below the repository's root
  int line;
  bool quoted;
  std::string name;
};

std::vector<std::string> linesOf(const fs::path& file) {
  std::ifstream in(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// Every source and header below these folders, by paths from the root.
std::vector<fs::path> sourcesBelow(const std::vector<std::string>& folders) {
  std::vector<fs::path> files;
  for (const std::string& folder : folders)
    for (const auto& entry : fs::recursive_directory_iterator(sourceFolder() / folder))
      if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")
        files.push_back(entry.path().lexically_relative(sourceFolder()));
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<Include> includesOf(const fs::path& file) {
  static const std::regex directive(R"re(^\s*#\s*include\s*([<"])([^>"]+)[>"])re");
  std::vector<Include> includes;
  int number = 0;
  for (const std::string& line : linesOf(sourceFolder() / file)) {
    ++number;
    if (std::smatch found; std::regex_search(line, found, directive))
      includes.push_back({file, number, found[1] == "\"", found[2]});
  }
  return includes;
}

std::string at(const Include& include) {
  return include.file.generic_string() + ":" + std::to_string(include.line) + " includes " + include.name;
}

// --- which room may know which

using Rooms = std::map<std::string, std::set<std::string>>;

// The table "Room | May know" of the page for newcomers.
Rooms documentedRooms() {
  static const std::regex row(R"(^\| `([a-z/]+)` \|(.*)\|$)");
  static const std::regex room("`([a-z/]+)`");
  Rooms rooms;
  bool inTable = false;
  for (const std::string& line : linesOf(sourceFolder() / "docs/architecture.md")) {
    if (line == "| Room | May know |") inTable = true;
    if (line.empty()) inTable = false;
    std::smatch found;
    if (!inTable || !std::regex_match(line, found, row)) continue;
    const std::string known = found[2];
    std::set<std::string>& names = rooms[found[1]];
    for (std::sregex_iterator at(known.begin(), known.end(), room), end; at != end; ++at)
      names.insert((*at)[1]);
  }
  return rooms;
}

// A room's name as the table has it: folders of `src` by their path below it, programs with `programs/`.
std::string roomOf(const fs::path& folder) {
  const std::string name = folder.generic_string();
  return name.starts_with("src/") ? name.substr(4) : name;
}

// The folder of an included file: beside the one that includes it, below `src`, or below `programs`.
fs::path folderOf(const Include& include) {
  for (const fs::path& base : {include.file.parent_path(), fs::path("src"), fs::path("programs")}) {
    const fs::path file = (base / include.name).lexically_normal();
    if (fs::exists(sourceFolder() / file)) return file.parent_path();
  }
  // A program's half for one platform includes what its common half has.
  const fs::path above = include.file.parent_path().parent_path() / include.name;
  return fs::exists(sourceFolder() / above) ? above.lexically_normal().parent_path() : fs::path();
}

TEST(Rooms, EachKnowsWhatThePageSaysAndNoMore) {
  const Rooms documented = documentedRooms();
  ASSERT_FALSE(documented.empty()) << "docs/architecture.md has no table \"Room | May know\"";
  Rooms used;
  for (const fs::path& file : sourcesBelow({"src", "programs"})) {
    const std::string room = roomOf(file.parent_path());
    const auto entry = documented.find(room);
    if (entry == documented.end()) {
      ADD_FAILURE() << file << " lies in " << room << ", which has no row in docs/architecture.md";
      continue;
    }
    used[room];
    for (const Include& include : includesOf(file)) {
      if (!include.quoted) continue;
      const std::string known = roomOf(folderOf(include));
      if (known.empty() || known == room) continue;  // made by the build, or its own
      used[room].insert(known);
      EXPECT_TRUE(entry->second.contains(known))
          << at(include) << ": " << room << " may not know " << known << " (docs/architecture.md)";
    }
  }
  for (const auto& [room, known] : documented) {
    EXPECT_TRUE(used.contains(room)) << "docs/architecture.md names " << room << ", which has no sources";
    for (const std::string& name : known)
      EXPECT_TRUE(used[room].contains(name))
          << "docs/architecture.md lets " << room << " know " << name << ", which it does not need";
  }
}

TEST(Rooms, NoneKnowsItselfInACircle) {
  Rooms reached = documentedRooms();
  for (bool grown = true; grown;) {
    grown = false;
    for (auto& [room, known] : reached)
      for (const std::string& name : std::set(known))
        for (const std::string& further : std::set(reached[name])) grown |= known.insert(further).second;
  }
  for (const auto& [room, known] : reached) EXPECT_FALSE(known.contains(room)) << room;
}

// --- Windows

bool ofWindows(const fs::path& file) {
  return std::any_of(file.begin(), file.end(), [](const fs::path& part) { return part == "windows"; });
}

TEST(WindowsCode, StaysInTheWindowsFolders) {
  static const std::regex windows(
      R"(#\s*include\s*<(windows|winuser|windowsx|commctrl|ole2|objbase|oleauto|oaidl|objidl|unknwn|shlobj|winreg|uxtheme)\.h>|_WIN32\b|_WIN64\b|__MINGW)");
  for (const fs::path& file : sourcesBelow({"src", "programs", "tests", "bench"})) {
    if (ofWindows(file) || file.filename() == "house_test.cpp") continue;
    int number = 0;
    for (const std::string& line : linesOf(sourceFolder() / file)) {
      ++number;
      EXPECT_FALSE(std::regex_search(line, windows))
          << file.generic_string() << ":" << number << ": " << line;
    }
  }
}

// --- tables and statements

// The names of the described tables, one or the other.
std::string anyTable() {
  std::string names;
  for (const database::Description& description : startup::databases)
    for (const database::TableDefinition& table : description.tables)
      names += (names.empty() ? "" : "|") + std::string(table.name.begin(), table.name.end());
  return names;
}

// Every line below these folders in which the pattern is found, but for those of the files that may hold it.
std::vector<std::string> linesWith(const std::regex& pattern, const std::vector<std::string>& folders,
                                   const std::set<std::string>& except) {
  std::vector<std::string> found;
  for (const fs::path& file : sourcesBelow(folders)) {
    if (except.contains(file.generic_string())) continue;
    int number = 0;
    for (const std::string& line : linesOf(sourceFolder() / file)) {
      ++number;
      if (std::regex_search(line, pattern))
        found.push_back(file.generic_string() + ":" + std::to_string(number) + ": " + line);
    }
  }
  return found;
}

// Some of the names are words of C++ and Windows too: as a table's they stand in quotes or behind a key word.
TEST(Statements, TheEnginesNameNoTable) {
  const std::regex named("(\"|\\bfrom |\\bON )(" + anyTable() + ")\\b", std::regex::icase);
  EXPECT_EQ(linesWith(named, {"src/platform"}, {}), std::vector<std::string>{});
}

TEST(Statements, EachStandsOnce) {
  static const std::regex statement(R"re("(select|delete)\b[^"]*\bfrom +[a-z]+ +(where|order))re",
                                    std::regex::icase);
  const std::set<std::string> homes{"src/store/fault_database.h", "src/language/language_databases.h",
                                    "src/settings/suite_databases.h"};
  for (const std::string& home : homes) EXPECT_TRUE(fs::exists(sourceFolder() / home)) << home;
  std::vector<std::string> copies = linesWith(statement, {"src", "programs"}, homes);
  // Those on the engine's own tables.
  std::erase_if(copies, [](const std::string& line) { return line.find("Vordane") != line.npos; });
  EXPECT_EQ(copies, std::vector<std::string>{});
}

// --- the form of files

// What a source begins with is its own header: so every header is known to stand alone.
TEST(Includes, ASourceBeginsWithItsOwnHeader) {
  for (const fs::path& file : sourcesBelow({"src", "programs"})) {
    fs::path header = file;
    header.replace_extension(".h");
    if (file.extension() != ".cpp" || !fs::exists(sourceFolder() / header)) continue;
    const auto includes = includesOf(file);
    ASSERT_FALSE(includes.empty()) << file;
    EXPECT_EQ(fs::path(includes.front().name).filename(), header.filename()) << at(includes.front());
  }
}

// Then what the system and the libraries give, then the rooms of this house.
TEST(Includes, TheRoomsOfTheHouseStandLast) {
  for (const fs::path& file : sourcesBelow({"src", "programs", "tests"})) {
    auto includes = includesOf(file);
    // Its own header, or the one that a test is about.
    if (!includes.empty() && includes.front().quoted) includes.erase(includes.begin());
    const auto firstOfHouse =
        std::find_if(includes.begin(), includes.end(), [](const Include& include) { return include.quoted; });
    const auto late =
        std::find_if(firstOfHouse, includes.end(), [](const Include& include) { return !include.quoted; });
    if (late != includes.end()) ADD_FAILURE() << at(*late) << " behind " << firstOfHouse->name;
  }
}

// clang-tidy knows this rule too, but looks for it in the first of several sources alone.
TEST(Aliases, OfNamespacesAreUsed) {
  static const std::regex alias(R"re(^namespace (\w+) = )re");
  int found = 0;
  for (const fs::path& file : sourcesBelow({"src", "programs", "tests"})) {
    if (file.extension() != ".cpp") continue;
    const auto lines = linesOf(sourceFolder() / file);
    for (const std::string& line : lines) {
      std::smatch name;
      if (!std::regex_search(line, name, alias)) continue;
      ++found;
      const std::string use = name[1].str() + "::";
      EXPECT_TRUE(std::any_of(
          lines.begin(), lines.end(),
          [&](const std::string& other) { return other != line && other.find(use) != other.npos; }))
          << file << ": " << line;
    }
  }
  EXPECT_GT(found, 0);
}

TEST(Headers, AreGuardedAlike) {
  for (const fs::path& file : sourcesBelow({"src", "programs", "tests", "bench"})) {
    if (file.extension() != ".h") continue;
    const auto lines = linesOf(sourceFolder() / file);
    const auto isOnce = [](const std::string& line) { return line == "#pragma once"; };
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isOnce), 1) << file;
  }
}

// Runs a command in the repository's root; what it prints, and whether it ended well.
struct Outcome {
  std::string output;
  bool well;
};
Outcome run(const std::string& command) {
  const std::string whole = "cd '" + sourceFolder().string() + "' && " + command + " 2>&1";
  FILE* pipe = popen(whole.c_str(), "r");
  if (pipe == nullptr) return {"no process", false};
  std::string output;
  char block[4096];
  for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, pipe)) > 0;) output.append(block, got);
  return {output, pclose(pipe) == 0};
}

TEST(Format, EveryFileIsAsClangFormatLeavesIt) {
  std::string files;
  for (const fs::path& file : sourcesBelow({"src", "programs", "tests", "bench"}))
    files += " '" + file.string() + "'";
  const Outcome outcome = run("clang-format-14 --dry-run -Werror" + files);
  EXPECT_TRUE(outcome.well) << outcome.output;
}

}  // namespace
}  // namespace vordane::test

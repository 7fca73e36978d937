// Tables as CSV, and a language database as its sources again.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "export_csv.h"
#include "export_texts.h"
#include "language_build.h"
#include "places.h"
#include "platform/access/access_child.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using automation::Value;

Value words(const char16_t* text) {
  return std::u16string(text);
}

class Export : public testing::Test {
 protected:
  Export() { fs::create_directories(folder); }
  ~Export() override { fs::remove_all(folder); }

  static std::string bytesOf(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  static std::string sample(const char* name) { return (test::dataFolder() / "access/").string() + name; }

  fs::path folder = fs::temp_directory_path() / ("vordane-export-" + std::to_string(std::random_device()()));
};

TEST_F(Export, ACsvFieldTellsNullFromTheEmptyText) {
  EXPECT_EQ(csvField(automation::Null{}), "");
  EXPECT_EQ(csvField(words(u"")), "\"\"");
  EXPECT_EQ(csvField(words(u" plain ж ")), " plain ж ");
  EXPECT_EQ(csvField(words(u"a,b")), "\"a,b\"");
  EXPECT_EQ(csvField(words(u"say \"it\"")), "\"say \"\"it\"\"\"");
  EXPECT_EQ(csvField(words(u"a\r\nb")), "\"a\r\nb\"");
  EXPECT_EQ(csvField(std::int16_t{-32768}), "-32768");
  EXPECT_EQ(csvField(true), "True");
}

TEST_F(Export, EveryTableIsAFile) {
  CsvExport out(folder / "csv");
  access::readAccessFileInChild(sample("Schedule.mdb"), out);
  EXPECT_EQ(out.files(), std::vector<fs::path>{folder / "csv" / "Options.csv"});
  const std::string text = bytesOf(out.files().at(0));
  EXPECT_TRUE(text.starts_with("Key,Wait,ErrorStop,Count,Log,Log2,FileByte,File\r\n")) << text;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5);
}

TEST_F(Export, ATableThatEndsEarlyLeavesNoFile) {
  {
    CsvExport out(folder);
    out.beginTable({u"PBXList", {{u"ID", access::ColumnType::longInteger, 0, true}}, 2, 2});
    out.row({1});
  }
  EXPECT_TRUE(fs::is_empty(folder));
}

// The rows of a source without their places, in one order.
std::vector<std::vector<std::u16string>> plain(const SourceRows& rows) {
  std::vector<std::vector<std::u16string>> all;
  for (const SourceRow& row : rows) all.push_back(row.fields);
  std::sort(all.begin(), all.end());
  return all;
}

TEST_F(Export, ALanguageGoesThereAndBackAgain) {
  for (const char* language : {"en", "ja"}) {
    Problems problems;
    const auto source = readLanguageSource(test::sourceFolder() / "data" / "language" / language, problems);
    buildOwnLanguage(source, folder / "VORDANE.LNG");
    buildCommonLanguage(source, folder / "Common.LNG");
    const fs::path texts = folder / language / "texts";
    for (const char* name : {"VORDANE.LNG", "Common.LNG"}) {
      TextExport out;
      tools::readTables((folder / name).u16string(), out);
      out.write(texts);
      EXPECT_EQ(out.problems(), Problems{});
    }
    const auto again = readLanguageSource(texts, problems);
    EXPECT_EQ(problems, Problems{});
    for (const auto rows : {&LanguageSource::messages, &LanguageSource::lists, &LanguageSource::forms,
                            &LanguageSource::controls, &LanguageSource::headings, &LanguageSource::project,
                            &LanguageSource::boxes, &LanguageSource::common_boxes, &LanguageSource::help,
                            &LanguageSource::pictures, &LanguageSource::picture_sets})
      EXPECT_EQ(plain(again.*rows), plain(source.*rows)) << language;
  }
}

TEST_F(Export, WhatTheSourcesHaveNoFormForIsTold) {
  TextExport out;
  access::readAccessFileInChild(sample("VORDANE.LNG"), out);
  out.write(folder / "texts");
  EXPECT_FALSE(out.problems().empty());
  const std::string messages = bytesOf(folder / "texts" / "messages.tsv");
  EXPECT_TRUE(messages.starts_with("0\tMessage 0\n1\tMessage 1\n")) << messages.substr(0, 80);
  EXPECT_EQ(std::count(messages.begin(), messages.end(), '\n'), 165);
}

TEST_F(Export, SharedSourcesThatAreThereStay) {
  fs::create_directories(folder / "shared");
  std::ofstream(folder / "shared" / "picture_sets.tsv") << "mine";
  TextExport out;
  access::readAccessFileInChild(sample("Common.LNG"), out);
  out.write(folder / "en");
  EXPECT_EQ(bytesOf(folder / "shared" / "picture_sets.tsv"), "mine");
  EXPECT_TRUE(fs::exists(folder / "en" / "common_boxes.tsv"));
}

}  // namespace
}  // namespace vordane::tools

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "background_pictures.h"
#include "faults/kind_lists.h"
#include "language/comLanguage.h"
#include "language/form_controls.h"
#include "language/message_numbers.h"
#include "language_check.h"
#include "language_folder.h"
#include "lines.h"
#include "places.h"
#include "platform/control_types.h"
#include "platform/grid_columns.h"
#include "report_layout.h"
#include "startup/databases.h"
#include "suite_files.h"

namespace vordane::tools {
namespace {

class Suite : public testing::TestWithParam<const char*> {
 protected:
  Suite() : texts(GetParam()), layout{texts.files.folder() / "30000"} {
    Problems problems;
    source = readLanguageSource(texts.folder(), problems);
  }
  std::unique_ptr<database::Database> open(const std::filesystem::path& file) {
    return sqlite::makeEngine(startup::databases)->open(toText(file), true);
  }

  fakes::LanguageFolder texts;
  SuiteLayout layout;
  LanguageSource source;
};

// Every loader of the program takes the language to its end.
TEST_P(Suite, ItsLanguageLoadsWhole) {
  makeSuiteFiles(layout, source);
  const auto language = open(layout.ownDatabases() / "VORDANE.LNG");
  window::Properties window = window::designedProperties(u"Form");
  window[u"Caption"] = std::u16string{};
  window::Form form(std::u16string(formName), window);
  for (const FormControl& control : formControls) {
    window::Properties properties = window::designedProperties(control.typeName);
    if (control.typeName == u"SSDBGrid") window::addColumns(properties, window::columnCount);
    form.add(std::u16string(control.name), -1, std::u16string(control.typeName), properties);
  }
  for (const KindList& list : kindLists)
    form.add(std::u16string(list.name()), -1, u"ComboBox", window::designedProperties(u"ComboBox"));

  EXPECT_TRUE(comLanguage::LocaliseForm(form, *language));
  EXPECT_TRUE(comLanguage::LocaliseControls(form, *language));
  EXPECT_TRUE(comLanguage::LoadComboLists(form, *language));
  EXPECT_TRUE(comLanguage::LocaliseGridHeadings(form, *language));
  comLanguage::ProjectTexts project;
  EXPECT_TRUE(comLanguage::LoadProjectTexts(u"VORDANE", *language, project));
  std::vector<std::u16string> messages;
  EXPECT_TRUE(comLanguage::LoadTextArray(messages, u"tMessages", *language));
  EXPECT_EQ(static_cast<std::int32_t>(messages.size()), messageCount);
  EXPECT_FALSE(messages[message::noHelpText].empty());
  EXPECT_GE(comLanguage::loadHelpTexts(form, *language).size(), 5U);
  for (const KindList& list : kindLists) {
    const auto items = static_cast<int>(form.control(list.name()).items().size());
    EXPECT_TRUE(list.atLeast ? items >= list.items : items == list.items);
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, Suite, testing::Values("en", "ru", "ja"));

// "InstallPath" itself ends in a separator; and the directory's name is the version.
TEST(SuiteFiles, TheDirectoryIsTheSameHoweverItIsNamed) {
  fakes::LanguageFolder texts;
  const std::filesystem::path root = texts.files.folder() / "30000";
  std::filesystem::create_directories(root / "ADDINS");
  for (const char* behind : {"", "/", "//", "/.", "/ADDINS/..", "/ADDINS/../"})
    EXPECT_EQ(suiteDirectory(root.string() + behind), root) << behind;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(root);
  EXPECT_EQ(suiteDirectory("."), root);
  EXPECT_EQ(suiteDirectory("./"), root);
  EXPECT_EQ(suiteDirectory("../30000/"), root);
  std::filesystem::current_path(before);
  EXPECT_THROW(suiteDirectory((root / "none").string()), ToolError);
  std::ofstream(root / "file") << "x";
  EXPECT_THROW(suiteDirectory((root / "file").string()), ToolError);
}

TEST(SuiteFiles, StandInTheInstalledLayout) {
  fakes::LanguageFolder texts;
  Problems problems;
  const SuiteLayout layout{texts.files.folder() / "30000"};
  makeSuiteFiles(layout, readLanguageSource(texts.folder(), problems));
  for (const char* file :
       {"ADDINS/DATABASE/FAULT.MDB", "ADDINS/DATABASE/VORDANE.LNG", "ADDINS/HELP/VORDANE.TXT",
        "QUIL32/DATABASE/Common.LNG", "QUIL32/DATABASE/Register.mdb", "QUIL32/DATABASE/Schedule.mdb",
        "BACKGRND/VORDBACK.BMP", "BACKGRND/MIST.BMP"})
    EXPECT_TRUE(std::filesystem::exists(layout.root / file)) << file;
  const auto engine = sqlite::makeEngine(startup::databases);
  const auto registry = engine->open(toText(layout.sharedDatabases() / "Register.mdb"), true);
  EXPECT_FALSE(registry->openRecordset(u"SELECT * FROM Registry WHERE AppName = \"VORDANE.WRX\"")->isEmpty());
  const auto schedule = engine->open(toText(layout.sharedDatabases() / "Schedule.mdb"), true);
  EXPECT_EQ(
      automation::toInteger(schedule->openRecordset(u"SELECT * FROM Options WHERE Key = 2")->get(u"Count")),
      3);
}

// The languages to read in stand beside that of the suite, whichever it is; the one it has stands there once.
TEST(SuiteFiles, HaveTheOtherLanguagesBesideTheSuitesOwn) {
  std::vector<LanguageSource> languages;
  for (const char* language : {"en", "ru", "ja"}) {
    fakes::LanguageFolder texts(language);
    Problems problems;
    languages.push_back(readLanguageSource(texts.folder(), problems));
    languages.back().name = language;
  }
  fakes::LanguageFolder texts;
  const SuiteLayout layout{texts.files.folder() / "30000"};
  const auto beside = [&] {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(layout.ownDatabases()))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  };
  makeSuiteFiles(layout, languages[0], languages);
  EXPECT_EQ(beside(),
            (std::vector<std::string>{"FAULT.MDB", "VORDANE.LNG", "VORDANE.ja.LNG", "VORDANE.ru.LNG"}));
  makeSuiteFiles(layout, languages[1], languages);
  EXPECT_EQ(beside(),
            (std::vector<std::string>{"FAULT.MDB", "VORDANE.LNG", "VORDANE.en.LNG", "VORDANE.ja.LNG"}));
  const auto english =
      sqlite::makeEngine(startup::databases)->open(toText(layout.ownDatabases() / "VORDANE.en.LNG"), true);
  std::vector<std::u16string> messages;
  EXPECT_TRUE(comLanguage::LoadTextArray(messages, u"tMessages", *english));
  EXPECT_EQ(messages.at(message::languageName), u"English");
}

std::string layoutIn(const char* language) {
  fakes::LanguageFolder texts(language);
  Problems problems;
  LanguageSource source = readLanguageSource(texts.folder(), problems);
  source.name = language;
  const SuiteLayout layout{texts.files.folder() / "30000"};
  for (int time = 0; time < 2; ++time)
    installReportLayout(layout, test::sourceFolder() / "data" / "report", source);
  std::ifstream in(layout.root / "ADDINS/REPORT/FAULT.RPT", std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// With the words and the signs of the window: a filled triangle for a major fault, a hollow one for a minor.
TEST(SuiteFiles, TheReportsLayoutIsInTheLanguageOfTheSuite) {
  const struct {
    const char* language;
    std::initializer_list<const char*> parts;
  } languages[] = {
      {"en",
       {"<html lang=\"en\">", "<h1>Faults of {{PBXName}}</h1>", "<th>Processor</th>", ">MAJOR: alarm<"}},
      {"ru", {"<html lang=\"ru\">", "<h1>Неисправности станции {{PBXName}}</h1>", "<th>Процессор</th>"}},
      {"ja", {"<html lang=\"ja\">", "<h1>{{PBXName}} の障害</h1>", "<th>プロセッサ</th>", ">重大: 警報<"}},
  };
  for (const auto& [language, parts] : languages) {
    const std::string layout = layoutIn(language);
    EXPECT_EQ(layout.find("[["), std::string::npos) << language;
    for (const char* part : parts) EXPECT_NE(layout.find(part), std::string::npos) << part;
    for (const char* sign : {".class-MJ::before { content: \"\\25B2", ".class-MN::before { content: \"\\25B3",
                             ".lit::before { content: \"\\25CF", ".off::before { content: \"\\25CB"})
      EXPECT_NE(layout.find(sign), std::string::npos) << sign;
    // What is not in the language of the suite would stand between tags in letters of another.
    if (language == std::string("en")) continue;
    for (const char* english : {">Date<", ">Class<", ">Order<", ">Printed", "Major alarm", "No faults"})
      EXPECT_EQ(layout.find(english), std::string::npos) << language << english;
  }
}

TEST(SuiteFiles, ALayoutWithATextThatIsNotThereIsRefused) {
  LanguageSource source;
  source.name = "en";
  source.headings = {{"", {u"grd", u"2", u"Date & <time>"}}};
  EXPECT_EQ(reportLayout("<b>[[heading 2]]</b>[[a]]{{x}}[[language]]", source, "a\tb {{PBX}}\r\n", "X"),
            "<b>Date &amp; &lt;time&gt;</b>b {{PBX}}{{x}}en");
  EXPECT_THROW(reportLayout("[[heading 3]]", source, "", "X"), ToolError);
  EXPECT_THROW(reportLayout("[[heading 2", source, "", "X"), ToolError);
  const fakes::LanguageFolder files;
  const SuiteLayout layout{files.files.folder() / "suite"};
  EXPECT_THROW(installReportLayout(layout, layout.root / "none", source), ToolError);
}

TEST(SuiteFiles, StoredFaultsStayWhenTheFilesAreMadeAgain) {
  fakes::LanguageFolder texts;
  Problems problems;
  const SuiteLayout layout{texts.files.folder() / "30000"};
  const LanguageSource source = readLanguageSource(texts.folder(), problems);
  makeSuiteFiles(layout, source);
  {
    const auto faults =
        sqlite::makeEngine(startup::databases)->open(toText(layout.ownDatabases() / "FAULT.MDB"), false);
    const auto rows = faults->openRecordset(u"Select * FROM PBXList");
    rows->addNew();
    rows->set(u"PBXName", std::u16string(u"PBX-1"));
    rows->update();
  }
  makeSuiteFiles(layout, source);
  const auto faults =
      sqlite::makeEngine(startup::databases)->open(toText(layout.ownDatabases() / "FAULT.MDB"), true);
  EXPECT_FALSE(faults->openRecordset(u"Select * FROM PBXList WHERE PBXName = \"PBX-1\"")->isEmpty());
}

TEST(BackgroundPictures, EveryNameOfTheSetsIsDrawn) {
  Problems problems;
  fakes::LanguageFolder texts;
  const LanguageSource source = readLanguageSource(texts.folder(), problems);
  const auto drawn = [](std::u16string_view file) {
    for (const BackgroundPicture& picture : backgroundPictures())
      if (picture.file == file) return true;
    return false;
  };
  for (const SourceRow& row : source.pictures) EXPECT_TRUE(drawn(row.fields[1]));
  for (const SourceRow& row : source.picture_sets) {
    EXPECT_TRUE(drawn(row.fields[1]));
    EXPECT_TRUE(drawn(row.fields[2]));
  }
}

TEST(BackgroundPictures, AreLightBitmaps) {
  for (const BackgroundPicture& picture : backgroundPictures()) {
    const std::string bytes = drawPicture(picture);
    ASSERT_EQ(bytes.size(), 54U + 16 * 256 * 3);
    EXPECT_EQ(bytes.substr(0, 2), "BM");
    for (std::size_t at = 54; at < bytes.size(); ++at)
      ASSERT_GE(static_cast<unsigned char>(bytes[at]),
                220);  // black text on it keeps a contrast above 14 to 1
    EXPECT_EQ(static_cast<unsigned char>(bytes[54]), picture.bottom.blue);
    EXPECT_EQ(static_cast<unsigned char>(bytes[bytes.size() - 1]), picture.top.red);
  }
}

}  // namespace
}  // namespace vordane::tools

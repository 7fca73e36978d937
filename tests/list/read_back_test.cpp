// What is saved is what is shown, as programs read it that nobody here has written.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>

#include "fakes/memory_rows.h"
#include "list/saving.h"
#include "places.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::list {
namespace {

namespace fs = std::filesystem;
using fakes::MemoryRow;

constexpr std::u16string_view pieces[] = {u"text",       u"\"", u",",  u"\r\n", u";",      u"<b>",
                                          u"&amp;",      u"'",  u" ",  u"\t",   u"Ж",      u"障害",
                                          u"\U0001F600", u"=",  u"\\", u"]]>",  u"\u2028", u"-->"};

std::u16string someText(std::mt19937& random) {
  std::u16string text;
  for (auto parts = random() % 8; parts > 0; --parts) text += pieces[random() % std::size(pieces)];
  return text;
}

std::vector<MemoryRow> someRows() {
  std::mt19937 random(3);
  std::vector<MemoryRow> rows{{u"01", u"MJ", u"2026/11/20 20:58", u"MP   ", u"T\r\nD\r\n[03 00]", 9},
                              {u"", u"", u"", u"", u"", 0},
                              {u"=1", u"MN ", u"@x", u"-2", u"+3\r\n", -4}};
  while (rows.size() < 2000)
    rows.push_back({someText(random), random() % 2 == 0 ? u"MJ" : u"MN", someText(random), someText(random),
                    someText(random), static_cast<std::int64_t>(random() % 1'000'000'000)});
  return rows;
}

// To some of them; a note is one line.
std::map<std::int64_t, database::Note> someNotes(const std::vector<MemoryRow>& rows) {
  std::mt19937 random(4);
  std::map<std::int64_t, database::Note> notes;
  for (const MemoryRow& row : rows)
    if (random() % 3 == 0)
      notes[row.count] = {u"north\\" + row.alarm, u"2026/11/21 08:15",
                          database::noteLine(someText(random) + u"!")};
  return notes;
}

void write(const fs::path& file, const std::vector<std::vector<std::u16string>>& rows) {
  std::ofstream out(file, std::ios::binary);
  for (const auto& row : rows) {
    for (const std::u16string& cell : row) out << text::toUtf8(cell) << '\x1F';
    out << '\x1E';
  }
}

TEST(ReadBack, AllThreeFormsHoldWhatIsShownLineForLine) {
  const fs::path folder =
      fs::temp_directory_path() / ("vordane-read-back-" + std::to_string(std::random_device{}()));
  fs::create_directories(folder);
  fakes::MemoryRows rows(someRows());
  rows.kept.notes = someNotes(rows.rows);
  Desk desk;
  desk.setStored(&rows, u"PBX-1");
  Filter filter;  // so that not all are shown
  filter.text = u"t";
  desk.setFilter(filter);
  while (desk.busy()) desk.work([] { return true; });
  ASSERT_LT(desk.size(), rows.size());
  ASSERT_GT(desk.size(), 1000U);

  const Sheet sheet{
      u"Fault <List>",         u"PBX-1", u"", {u"x"}, {u"Вид", u"\"C\"", u"D,", u"&", u"F", u"№"}, 2000,
      {u"Note", u"By", u"At"}, u""};
  std::vector<std::vector<std::u16string>> shown{{sheet.headings.begin(), sheet.headings.end()}};
  shown[0].insert(shown[0].end(), sheet.noteHeadings.begin(), sheet.noteHeadings.end());
  for (std::size_t at = 0; at < desk.size(); ++at) {
    const auto row = *desk.row(at);
    const auto note = rows.kept.of(row.count).value_or(database::Note{});
    shown.push_back({row.fault, row.alarm, row.date, row.cpu, row.description, text::decimal(row.count),
                     note.text, note.author, note.moment});
  }
  write(folder / "shown", shown);
  for (const auto& [form, name] : {std::pair{RowForm::csvFile, "list.csv"},
                                   {RowForm::page, "list.html"},
                                   {RowForm::json, "list.json"}}) {
    Saving saving(desk, makeRowWriter(form, sheet, desk.size()), folder / name);
    EXPECT_EQ(saving.work([] { return true; }), Saving::State::saved);
  }
  const fs::path script = test::sourceFolder() / "tests" / "list" / "read_back.py";
  const std::string line = "python3 '" + script.string() + "' '" + folder.string() + "'";
  EXPECT_EQ(std::system(line.c_str()), 0);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace vordane::list

#include "list/row_forms.h"

#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "text/csv.h"
#include "text/fill.h"
#include "text/markup.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::list {
namespace {

using database::Note;
using window::GridRow;

constexpr std::string_view signature = "\xEF\xBB\xBF", lineEnd = "\r\n";
constexpr std::u16string_view betweenLines = u" \u00B7 ";
constexpr char16_t majorSign[] = u"\u25B2 ", minorSign[] = u"\u25B3 ";

std::array<std::u16string_view, 5> textsOf(const GridRow& row) {
  return {row.fault, row.alarm, row.date, row.cpu, row.description};
}

std::array<std::u16string_view, 3> textsOf(const Note& note) {
  return {note.text, note.author, note.moment};
}

class Csv final : public RowWriter {
 public:
  Csv(const Sheet& sheet, bool withSignature) : sheet_(sheet), withSignature_(withSignature) {}
  void begin(std::string& out) override {
    if (withSignature_) out += signature;
    for (std::size_t i = 0; i < sheet_.headings.size(); ++i) field(sheet_.headings[i], i > 0, out);
    for (const std::u16string& heading : sheet_.noteHeadings) field(heading, true, out);
    out += lineEnd;
  }
  void row(const GridRow& row, const Note& note, std::string& out) override {
    bool comma = false;
    for (const std::u16string_view text : textsOf(row)) field(text, std::exchange(comma, true), out);
    out += ',';
    text::appendUtf8(text::decimal(row.count), out);
    for (const std::u16string_view text : textsOf(note)) field(text, true, out);
    out += lineEnd;
  }
  void end(std::string&) override {}

 private:
  static void field(std::u16string_view text, bool comma, std::string& out) {
    if (comma) out += ',';
    out += text::csvQuoted(text::toUtf8(text::forSpreadsheet(std::u16string(text))));
  }
  const Sheet sheet_;
  bool withSignature_;
};

// The class with its sign, as the grid shows it.
void appendClass(std::u16string_view alarm, std::string& out) {
  const std::u16string_view word = text::trim(alarm);
  const bool major = word == u"MJ", minor = word == u"MN";
  out += major ? "<td class=\"mj\">" : "<td>";
  if (major || minor) {
    out += "<span aria-hidden=\"true\">";
    text::appendMarkup(major ? majorSign : minorSign, out);
    out += "</span>";
  }
  text::appendMarkup(word, out);
  out += "</td>";
}

void appendHeading(std::u16string_view heading, std::string& out) {
  out += "<th scope=\"col\">";
  text::appendMarkup(heading, out);
  out += "</th>";
}

void appendCell(std::u16string_view text, std::string& out) {
  out += "<td>";
  text::appendMarkup(text, out);
  out += "</td>";
}

// The title, then the details in quieter type.
void appendDescription(std::u16string_view description, std::string& out) {
  out += "<td class=\"d\">";
  const auto lines = text::lines(description);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i == 1) out += "<span>";
    if (i > 0) out += "<br>";
    text::appendMarkup(lines[i], out);
  }
  if (lines.size() > 1) out += "</span>";
  out += "</td>";
}

// The note, then in quieter type who wrote it and when.
void appendNote(const Note& note, std::string& out) {
  out += "<td class=\"d\">";
  text::appendMarkup(note.text, out);
  if (!note.text.empty()) {
    out += "<span><br>";
    text::appendMarkup(note.author, out);
    text::appendMarkup(betweenLines, out);
    text::appendMarkup(note.moment, out);
    out += "</span>";
  }
  out += "</td>";
}

class Table : public RowWriter {
 public:
  explicit Table(const Sheet& sheet) : sheet_(sheet) {}
  void begin(std::string& out) override {
    out += "<table><thead><tr>";
    for (const std::u16string& heading : sheet_.headings) appendHeading(heading, out);
    appendHeading(sheet_.noteHeadings[0], out);
    out += "</tr></thead><tbody>\r\n";
  }
  void row(const GridRow& row, const Note& note, std::string& out) override {
    out += "<tr>";
    appendCell(row.fault, out);
    appendClass(row.alarm, out);
    appendCell(row.date, out);
    appendCell(row.cpu, out);
    appendDescription(row.description, out);
    out += "<td class=\"n\">";
    text::appendUtf8(text::decimal(row.count), out);
    out += "</td>";
    appendNote(note, out);
    out += "</tr>\r\n";
  }
  void end(std::string& out) override { out += "</tbody></table>\r\n"; }

 protected:
  const Sheet sheet_;
};

constexpr std::string_view pageStyle = R"(<style>
body { font: 14px/1.4 "Segoe UI", "Meiryo UI", system-ui, sans-serif; color: #1b1b1b; margin: 1.5em; }
h1 { font-size: 1.4em; margin: 0; } p { margin: .3em 0 1em; }
table { border-collapse: collapse; width: 100%; } thead { display: table-header-group; }
th, td { text-align: left; vertical-align: top; padding: .25em .6em; border: 1px solid #ccc; white-space: pre-wrap; }
th { background: #f3f3f3; } tr { break-inside: avoid; } td.d { width: 35%; }
td.d span { color: #545454; } td.mj { font-weight: 600; } td.n, th:nth-child(6) { text-align: right; }
@media print { body { margin: 0; font-size: 9pt; } }
</style>)";

class Page final : public Table {
 public:
  using Table::Table;
  void begin(std::string& out) override {
    out += "<!DOCTYPE html>\r\n<html><head><meta charset=\"utf-8\"><title>";
    text::appendMarkup(sheet_.title, out);
    (out += "</title>") += pageStyle;
    out += "</head><body>\r\n<h1>";
    text::appendMarkup(sheet_.title, out);
    out += "</h1>\r\n<p>";
    for (std::size_t i = 0; i < sheet_.words.size(); ++i) {
      if (i > 0) text::appendMarkup(betweenLines, out);
      text::appendMarkup(sheet_.words[i], out);
    }
    out += "</p>\r\n";
    Table::begin(out);
  }
  void end(std::string& out) override {
    Table::end(out);
    out += "</body></html>\r\n";
  }
};

// One object for each row, so that the whole is never held.
class Json final : public RowWriter {
 public:
  explicit Json(const Sheet& sheet) : sheet_(sheet) {}
  void begin(std::string& out) override {
    nlohmann::ordered_json head{{"format", "vordane faults"},
                                {"version", 1},
                                {"exchange", text::toUtf8(sheet_.exchange)},
                                {"received", text::toUtf8(sheet_.received)},
                                {"stored", sheet_.stored}};
    out += head.dump();
    out.back() = ',';  // goes on with the rows
    out += "\"faults\":[";
  }
  void row(const GridRow& row, const Note& note, std::string& out) override {
    const nlohmann::ordered_json object{{"number", row.count},
                                        {"kind", text::toUtf8(row.fault)},
                                        {"class", text::toUtf8(row.alarm)},
                                        {"time", text::toUtf8(row.date)},
                                        {"processor", text::toUtf8(row.cpu)},
                                        {"description", text::toUtf8(row.description)},
                                        {"note", text::toUtf8(note.text)},
                                        {"noteAuthor", text::toUtf8(note.author)},
                                        {"noteTime", text::toUtf8(note.moment)}};
    out += std::exchange(comma_, true) ? ",\n" : "\n";
    out += object.dump();
  }
  void end(std::string& out) override { out += "\n]}\n"; }

 private:
  const Sheet sheet_;
  bool comma_ = false;
};

// A description in one line; tabs part columns.
std::u16string inOneLine(std::u16string_view text) {
  std::u16string one;
  for (const std::u16string_view line : text::lines(text)) {
    const std::u16string_view words = text::trim(line);
    if (words.empty()) continue;
    if (!one.empty()) one += betweenLines;
    one += words;
  }
  for (char16_t& character : one)
    if (character == u'\t') character = u' ';
  return one;
}

class Lines final : public RowWriter {
 public:
  Lines(const Sheet& sheet, bool headings) : sheet_(sheet), headings_(headings) {}
  void begin(std::string& out) override {
    if (!headings_) return;
    for (std::size_t i = 0; i < sheet_.headings.size(); ++i) cell(sheet_.headings[i], i > 0, out);
    for (const std::u16string& heading : sheet_.noteHeadings) cell(heading, true, out);
    out += lineEnd;
  }
  void row(const GridRow& row, const Note& note, std::string& out) override {
    bool tab = false;
    for (const std::u16string_view text : textsOf(row)) cell(text, std::exchange(tab, true), out);
    out += '\t';
    text::appendUtf8(text::decimal(row.count), out);
    for (const std::u16string_view text : textsOf(note)) cell(text, true, out);
    out += lineEnd;
  }
  void end(std::string&) override {}

 private:
  static void cell(std::u16string_view text, bool tab, std::string& out) {
    if (tab) out += '\t';
    text::appendUtf8(text::forSpreadsheet(inOneLine(text)), out);
  }
  const Sheet sheet_;
  bool headings_;
};

class Messages final : public RowWriter {
 public:
  explicit Messages(const Sheet& sheet) : noteBegin_(sheet.noteBegin) {}
  void begin(std::string&) override {}
  void row(const GridRow& row, const Note& note, std::string& out) override {
    if (std::exchange(more_, true)) out += lineEnd;
    for (const std::u16string_view line : text::lines(row.description)) {
      text::appendUtf8(line, out);
      out += lineEnd;
    }
    if (note.text.empty()) return;
    text::appendUtf8(fillText(noteBegin_, {note.author, note.moment}) + u" " + note.text, out);
    out += lineEnd;
  }
  void end(std::string&) override {}

 private:
  const std::u16string noteBegin_;
  bool more_ = false;
};

}  // namespace

std::unique_ptr<RowWriter> makeRowWriter(RowForm form, const Sheet& sheet, std::size_t rows) {
  switch (form) {
    case RowForm::csvFile:
      return std::make_unique<Csv>(sheet, true);
    case RowForm::csv:
      return std::make_unique<Csv>(sheet, false);
    case RowForm::page:
      return std::make_unique<Page>(sheet);
    case RowForm::json:
      return std::make_unique<Json>(sheet);
    case RowForm::table:
      return std::make_unique<Table>(sheet);
    case RowForm::lines:
      return std::make_unique<Lines>(sheet, rows > 1);
    case RowForm::messages:
      return std::make_unique<Messages>(sheet);
  }
  return nullptr;
}

}  // namespace vordane::list

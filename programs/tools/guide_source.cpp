#include "guide_source.h"

#include <algorithm>
#include <optional>

#include "faults/fault_texts.h"
#include "guide_kinds.h"
#include "guide_markdown.h"
#include "language/comLanguage.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view markBegin = "{{", markEnd = "}}";
constexpr char16_t placeOfValue = u'…';

// The column behind the one that holds `key`; nothing without such a row.
std::optional<std::u16string> cell(const SourceRows& rows, std::size_t keyColumn, std::u16string_view key,
                                   std::size_t column) {
  for (const SourceRow& row : rows)
    if (row.fields.size() > std::max(keyColumn, column) && row.fields[keyColumn] == key)
      return row.fields[column];
  return std::nullopt;
}

// {1} and its like, which the program fills in.
std::u16string withoutValues(std::u16string_view text) {
  std::u16string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool value = at + 2 < text.size() && text[at] == u'{' && text[at + 2] == u'}' &&
                       text::isDecimalDigit(text[at + 1]);
    if (value) at += 2;
    out += value ? placeOfValue : text[at];
  }
  return out;
}

// Without the sign of the access key, or the letter in brackets where the caption's own letters have none.
std::u16string withoutAccessKey(std::u16string caption) {
  const auto sign = caption.find(u'&');
  if (sign == caption.npos) return caption;
  const bool inBrackets = sign > 0 && caption[sign - 1] == u'(' && caption.find(u')', sign) == sign + 2;
  return inBrackets ? caption.erase(sign - 1, 4) : caption.erase(sign, 1);
}

std::u16string promptOf(std::u16string_view escaped) {
  std::u16string value(1, placeOfValue);
  std::u16string prompt = comLanguage::ExpandEscapes(escaped, value);
  std::replace(prompt.begin(), prompt.end(), u'\r', u' ');
  return prompt;
}

FaultTextTable faultTextsOf(const LanguageSource& language) {
  FaultTextTable texts;
  for (const SourceRow& row : language.messages)
    if (const auto number = text::parseInteger(row.fields[0])) texts.setMessage(*number, row.fields[1]);
  for (const SourceRow& row : language.lists)
    if (const auto kind = listKind(row.fields[0])) texts.addItem(*kind, row.fields[2]);
  return texts;
}

std::optional<std::u16string> textOf(std::string_view kind, std::u16string_view key,
                                     const LanguageSource& language) {
  if (kind == "message") {
    const auto text = cell(language.messages, 0, key, 1);
    return text && !text->empty() ? text : std::nullopt;
  }
  if (kind == "box") {
    const auto prompt = cell(language.boxes, 0, key, 1);
    return prompt ? std::optional(promptOf(*prompt)) : std::nullopt;
  }
  if (kind == "control") {
    const auto caption = cell(language.controls, 0, key, 1);
    return caption && caption != u"-1" ? caption : std::nullopt;
  }
  if (kind == "column") return cell(language.headings, 1, key, 2);
  if (kind == "project") return cell(language.project, 0, key, 1);
  return std::nullopt;
}

}  // namespace

GuideSource readGuide(const fs::path& folder, Problems& problems) {
  const std::string language = text::toUtf8(toText(folder.filename()));
  GuideSource guide{
      folder, language, {}, GuideWords(folder / "words.tsv", language + "/words.tsv", problems)};
  std::vector<fs::path> paths;
  std::error_code failure;
  for (const auto& entry : fs::directory_iterator(folder, failure))
    if (entry.path().extension() == ".md") paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  for (const fs::path& path : paths)
    guide.files.push_back({language + "/" + path.filename().string(), readFile(path)});
  if (guide.files.empty()) problems.push_back(language + ": the guide has no text");
  return guide;
}

void forEachLine(const GuideSource& guide, const TakeLine& take) {
  for (const GuideFile& file : guide.files) {
    bool code = false;
    int number = 0;
    for (std::string_view rest = file.text; !rest.empty();) {
      const std::size_t end = std::min(rest.find('\n'), rest.size());
      const std::string_view line = rest.substr(0, end);
      rest.remove_prefix(std::min(end + 1, rest.size()));
      ++number;
      if (line.starts_with("```"))
        code = !code;
      else if (!code)
        take(line, number, file);
    }
  }
}

std::vector<std::string> marksOf(std::string_view line) {
  std::vector<std::string> marks;
  for (std::size_t begin = line.find(markBegin); begin != line.npos;
       begin = line.find(markBegin, begin + 1)) {
    const std::size_t end = line.find(markEnd, begin);
    if (end == line.npos) break;
    marks.emplace_back(line.substr(begin + 2, end - begin - 2));
  }
  return marks;
}

std::string textOfMark(std::string_view mark, const LanguageSource& language, const GuideWords& words,
                       const std::string& place, Problems& problems) {
  if (mark == "kinds") return kindReference(faultTextsOf(language), words);
  const std::size_t blank = std::min(mark.find(' '), mark.size());
  const std::string_view kind = mark.substr(0, blank);
  const std::u16string key = text::fromUtf8(mark.substr(std::min(blank + 1, mark.size())));
  const auto text = textOf(kind, key, language);
  if (!text) {
    problems.push_back(place + ": {{" + std::string(mark) + "}} stands for nothing");
    return {};
  }
  const std::string shown = text::toUtf8(withoutValues(withoutAccessKey(*text)));
  const std::size_t first = std::min(shown.find_first_not_of(' '), shown.size());
  return markdownText(shown.substr(first));
}

std::string filledGuide(const GuideSource& guide, const LanguageSource& language, Problems& problems) {
  std::string out;
  for (const GuideFile& file : guide.files) {
    std::string_view rest = file.text;
    while (!rest.empty()) {
      const std::size_t begin = rest.find(markBegin);
      const std::size_t end = begin == rest.npos ? rest.npos : rest.find(markEnd, begin);
      out += rest.substr(0, end == rest.npos ? rest.size() : begin);
      if (end == rest.npos) break;
      out += textOfMark(rest.substr(begin + 2, end - begin - 2), language, guide.words, file.name, problems);
      rest.remove_prefix(end + 2);
    }
    out += "\n\n";
  }
  return out;
}

}  // namespace vordane::tools

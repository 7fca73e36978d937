#include "report_layout.h"

#include <map>

#include "lines.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using Texts = std::map<std::string, std::string, std::less<>>;

std::string forHtml(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '&')
      out += "&amp;";
    else if (c == '<')
      out += "&lt;";
    else if (c == '>')
      out += "&gt;";
    else
      out += c;
  }
  return out;
}

Texts textsOf(const LanguageSource& language, std::string_view own) {
  Texts texts{{"language", language.name}};
  const auto take = [&](const char* kind, const SourceRows& rows, std::size_t name, std::size_t text) {
    for (const SourceRow& row : rows)
      texts[kind + text::toUtf8(row.fields[name])] = text::toUtf8(row.fields[text]);
  };
  take("message ", language.messages, 0, 1);
  take("heading ", language.headings, 1, 2);
  take("control ", language.controls, 0, 1);
  while (!own.empty()) {
    const std::size_t end = std::min(own.find('\n'), own.size());
    std::string_view line = own.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    own.remove_prefix(std::min(end + 1, own.size()));
    const std::size_t tab = line.find('\t');
    if (tab != line.npos) texts[std::string(line.substr(0, tab))] = line.substr(tab + 1);
  }
  return texts;
}

}  // namespace

std::string reportLayout(std::string_view layout, const LanguageSource& language, std::string_view texts,
                         const std::string& place) {
  const Texts known = textsOf(language, texts);
  std::string out;
  for (;;) {
    const std::size_t begin = layout.find("[[");
    out += layout.substr(0, begin);
    if (begin == layout.npos) return out;
    const std::size_t end = layout.find("]]", begin);
    if (end == layout.npos) throw ToolError(place + ": ]] is missing behind a [[");
    const auto found = known.find(layout.substr(begin + 2, end - begin - 2));
    if (found == known.end())
      throw ToolError(place + ": there is no text \"" +
                      std::string(layout.substr(begin + 2, end - begin - 2)) + "\" in the language " +
                      language.name + ". Add it to the texts beside the layout");
    out += forHtml(found->second);
    layout.remove_prefix(end + 2);
  }
}

}  // namespace vordane::tools

#include "devhost/core/report_template.h"

#include <algorithm>

#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::devhost {

TemplateError::TemplateError(std::u16string text) : text_(std::move(text)), what_(text::toUtf8(text_)) {}

struct Layout::Part {
  enum class Kind { literal, value, section } kind;
  std::string literal;
  std::u16string name;
  int line = 0;
  std::vector<Part> inside;
};

struct Layout::Scope {
  const Values& values;
  const Scope* around;

  template <class Map>
  const typename Map::mapped_type* find(Map Values::*map, const std::u16string& name) const {
    const Map& own = values.*map;
    if (const auto found = own.find(name); found != own.end()) return &found->second;
    return around ? around->find(map, name) : nullptr;
  }
};

namespace {

[[noreturn]] void wrong(int line, std::u16string_view what, std::u16string_view name = {}) {
  throw TemplateError(u"The report's layout is wrong in line " + text::decimal(line) + u": " +
                      std::u16string(what) + std::u16string(name) + u".");
}

int linesIn(std::string_view text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

std::string escapeHtml(std::u16string_view text) {
  std::u16string out;
  for (const char16_t character : text) {
    switch (character) {
      case u'&':
        out += u"&amp;";
        break;
      case u'<':
        out += u"&lt;";
        break;
      case u'>':
        out += u"&gt;";
        break;
      case u'"':
        out += u"&quot;";
        break;
      case u'\'':
        out += u"&#39;";
        break;
      case u'\r':
        break;
      default:
        out += character < u' ' && character != u'\n' && character != u'\t' ? u'\uFFFD' : character;
    }
  }
  return text::toUtf8(out);
}

Layout::Layout(std::string_view utf8) {
  struct Open {
    std::u16string name;
    int line;
    std::vector<Part> parts;
  };
  std::vector<Open> open{{{}, 1, {}}};
  int line = 1;
  while (!utf8.empty()) {
    const std::size_t begin = std::min(utf8.find("{{"), utf8.size());
    open.back().parts.push_back({Part::Kind::literal, std::string(utf8.substr(0, begin)), {}, line, {}});
    line += linesIn(utf8.substr(0, begin));
    utf8.remove_prefix(begin);
    if (utf8.empty()) break;
    const std::size_t end = utf8.find("}}");
    if (end == std::string_view::npos) wrong(line, u"}} is missing");
    const std::string_view inside = utf8.substr(2, end - 2);
    const std::u16string tag(text::trim(text::fromUtf8(inside)));
    const std::u16string name(text::trim(std::u16string_view(tag).substr(tag.empty() ? 0 : 1)));
    utf8.remove_prefix(end + 2);
    if (tag.starts_with(u'#')) {
      open.push_back({name, line, {}});
    } else if (tag.starts_with(u'/')) {
      if (open.size() == 1 || open.back().name != name) wrong(line, u"no such section is open: ", name);
      Part section{Part::Kind::section, {}, name, open.back().line, std::move(open.back().parts)};
      open.pop_back();
      open.back().parts.push_back(std::move(section));
    } else if (!tag.starts_with(u'!')) {
      open.back().parts.push_back({Part::Kind::value, {}, tag, line, {}});
    }
    line += linesIn(inside);
  }
  if (open.size() > 1) wrong(open.back().line, u"the section is never closed: ", open.back().name);
  parts_ = std::move(open.front().parts);
}

Layout::~Layout() = default;

std::string Layout::render(const Values& values) const {
  std::string out;
  render(parts_, {values, nullptr}, out);
  return out;
}

void Layout::render(const std::vector<Part>& parts, const Scope& scope, std::string& out) {
  for (const Part& part : parts) {
    if (part.kind == Part::Kind::literal) {
      out += part.literal;
    } else if (part.kind == Part::Kind::value) {
      const std::u16string* text = scope.find(&Values::texts, part.name);
      if (!text) wrong(part.line, u"there is no value named ", part.name);
      out += escapeHtml(*text);
    } else {
      const auto* section = scope.find(&Values::sections, part.name);
      if (!section) wrong(part.line, u"there is no section named ", part.name);
      (*section)([&](const Values& inside) { render(part.inside, {inside, &scope}, out); });
    }
  }
}

}  // namespace vordane::devhost

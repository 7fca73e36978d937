// The layout of a report: a text with placeholders {{Name}} and sections {{#name}} ... {{/name}}. A section
// stands once, never or for each fault; {{! ... }} is left out. Values are escaped for HTML.
#pragma once

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::devhost {

// Wrong layout; the text names the line.
class TemplateError : public std::exception {
 public:
  explicit TemplateError(std::u16string text);
  const char* what() const noexcept override { return what_.c_str(); }
  const std::u16string& text() const { return text_; }

 private:
  std::u16string text_;
  std::string what_;
};

std::string escapeHtml(std::u16string_view text);  // & < > " ' and, as U+FFFD, what HTML can't hold

class Layout {
 public:
  // `utf8` is the whole template. Throws TemplateError.
  explicit Layout(std::string_view utf8);
  ~Layout();

  // One level of values: texts by placeholder, and for each section the levels it stands for (none: it is
  // left out). Inside a section the values around it hold too.
  struct Values {
    std::map<std::u16string, std::u16string, std::less<>> texts;
    std::map<std::u16string, std::function<void(const std::function<void(const Values&)>& show)>, std::less<>>
        sections;
  };
  // Throws TemplateError for a name that has no value.
  std::string render(const Values& values) const;

 private:
  struct Part;
  struct Scope;
  static void render(const std::vector<Part>& parts, const Scope& scope, std::string& out);
  std::vector<Part> parts_;
};

}  // namespace vordane::devhost

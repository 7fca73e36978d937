#include "text/markup.h"

#include "text/utf8.h"

namespace vordane::text {
namespace {

constexpr std::u16string_view special = u"<>&\"";

bool mayStand(char16_t character) {
  return character >= u' ' || character == u'\t' || character == u'\r' || character == u'\n';
}

std::string_view standIn(char16_t character) {
  switch (character) {
    case u'<':
      return "&lt;";
    case u'>':
      return "&gt;";
    case u'&':
      return "&amp;";
    case u'"':
      return "&quot;";
    default:
      return "\xEF\xBF\xBD";
  }
}

}  // namespace

void appendMarkup(std::u16string_view text, std::string& out) {
  for (std::size_t begin = 0, at = 0;; ++at) {
    const bool end = at == text.size();
    if (!end && mayStand(text[at]) && special.find(text[at]) == special.npos) continue;
    appendUtf8(text.substr(begin, at - begin), out);
    if (end) return;
    out += standIn(text[at]);
    begin = at + 1;
  }
}

}  // namespace vordane::text

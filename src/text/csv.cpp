#include "text/csv.h"

namespace vordane::text {

std::string csvQuoted(std::string_view utf8) {
  std::string out = "\"";
  for (const char byte : utf8) out.append(byte == '"' ? 2 : 1, byte);
  return out + '"';
}

std::u16string forSpreadsheet(std::u16string text) {
  constexpr std::u16string_view formulaBegins = u"=+-@\t\r\n\uFF1D\uFF0B\uFF0D\uFF20";
  if (!text.empty() && formulaBegins.find(text.front()) != formulaBegins.npos) text.insert(0, u"'");
  return text;
}

}  // namespace vordane::text

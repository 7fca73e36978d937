#include "devhost/core/trace.h"

#include <charconv>

#include "text/text.h"
#include "text/utf8.h"

namespace vordane::devhost {
namespace {

std::u16string hexadecimal(std::uint32_t value, int digits) {
  constexpr std::u16string_view symbols = u"0123456789ABCDEF";
  std::u16string text(static_cast<std::size_t>(digits), u'0');
  for (auto place = text.rbegin(); place != text.rend(); ++place, value >>= 4U) *place = symbols[value & 15U];
  return text;
}

std::u16string inQuotes(std::u16string_view text) {
  std::u16string out = u"\"";
  for (const char16_t character : text) {
    switch (character) {
      case u'\\':
        out += u"\\\\";
        break;
      case u'"':
        out += u"\\\"";
        break;
      case u'\r':
        out += u"\\r";
        break;
      case u'\n':
        out += u"\\n";
        break;
      case u'\t':
        out += u"\\t";
        break;
      default:
        if (character < u' ')
          out.append(u"\\x").append(hexadecimal(character, 2));
        else
          out += character;
    }
  }
  out += u'"';
  return out;
}

}  // namespace

std::u16string written(const automation::Value& value) {
  if (automation::isNull(value)) return u"Null";
  if (automation::isEmpty(value)) return u"Empty";
  if (automation::isMissing(value)) return u"Missing";
  if (const auto* object = std::get_if<automation::ObjectRef>(&value))
    return *object ? u"object" : u"Nothing";
  if (const auto* text = std::get_if<std::u16string>(&value)) return inQuotes(*text);
  return automation::toText(value);
}

std::u16string written(std::span<const automation::Argument> arguments) {
  std::u16string text;
  for (const automation::Argument& argument : arguments) {
    if (!text.empty()) text += u' ';
    text += written(argument.value);
  }
  return text;
}

std::u16string written(const automation::AutomationError& error) {
  std::u16string text = u"0x";
  text += hexadecimal(static_cast<std::uint32_t>(error.code()), 8);
  if (!error.description().empty()) text.append(u" ").append(inQuotes(error.description()));
  return text;
}

void Trace::line(std::u16string_view text) {
  if (!quiet_) print_(text::toUtf8(text));
}

void Trace::notification(std::u16string_view member, std::u16string_view arguments) {
  std::u16string text(member);
  if (!arguments.empty()) text.append(u" ").append(arguments);
  line(text);
  notifications_.push_back(std::move(text));
}

std::size_t Trace::find(std::u16string_view text, std::size_t from) const {
  for (std::size_t i = from; i < notifications_.size(); ++i) {
    const std::u16string_view kept = notifications_[i];
    if (text::startsWith(kept, text) && (kept.size() == text.size() || kept[text.size()] == u' '))
      return i + 1;
  }
  return 0;
}

}  // namespace vordane::devhost

#include "capsule/other_names.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t shortest = 4;  // of a name that is replaced wherever it stands
constexpr std::u16string_view wordFor[] = {u"Exchange-", u"Person-", u"Workstation-", u"Identifier-"};
// What the trace says of itself is no name of anybody.
constexpr std::string_view ownWords[] = {"at", "event", "member", "class", "as", "is", "version"};

std::u16string fold(std::u16string_view text) {
  std::u16string folded(text);
  for (char16_t& c : folded) c = text::lower(c);
  return folded;
}

std::u16string_view trimmed(std::u16string_view text) {
  while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
  return text;
}

bool isSeparator(char16_t c) {
  return c == u'\\' || c == u'/';
}

std::optional<std::u16string> textOf(const Json& value) {
  if (!value.is_string()) return {};
  return text::fromUtf8(value.get<std::string>());
}

// Half of a character beyond the basic plane stands in a trace as `\udXXX`, which is no JSON for others.
// While a line is parsed, a character that is none stands in place of the backslash and the u.
constexpr std::string_view half = "\\u", mark = "\xEF\xBF\xBF";

std::string withMarks(std::string_view line) {
  std::string out;
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (line.substr(at).starts_with("\\ud")) {
      out += mark;
      ++at;
    } else {
      out += line[at];
      if (line[at] == '\\' && at + 1 < line.size()) out += line[++at];
    }
  }
  return out;
}

std::string withoutMarks(std::string line) {
  for (std::size_t at = line.find(mark); at != line.npos; at = line.find(mark, at))
    line.replace(at, mark.size(), half);
  return line;
}

}  // namespace

void OtherNames::add(Kind kind, std::u16string_view name) {
  std::u16string folded = fold(trimmed(name));
  if (folded.empty() || whole(folded) != nullptr) return;
  const auto index = static_cast<std::size_t>(kind);
  const std::u16string other = std::u16string(wordFor[index]) + text::decimal(++given_[index]);
  const auto place = std::find_if(names_.begin(), names_.end(),
                                  [&](const Name& one) { return one.folded.size() < folded.size(); });
  names_.insert(place, {std::move(folded), other});
}

void OtherNames::addFolders(std::u16string_view text) {
  const std::u16string folded = fold(text);
  for (const std::u16string_view parent : {u"users", u"documents and settings", u"home"})
    for (std::size_t at = folded.find(parent); at != folded.npos; at = folded.find(parent, at + 1)) {
      std::size_t begin = at + parent.size();
      if (at == 0 || !isSeparator(folded[at - 1]) || begin >= folded.size() || !isSeparator(folded[begin]))
        continue;
      while (begin < folded.size() && isSeparator(folded[begin])) ++begin;
      const std::size_t end = std::min(folded.find_first_of(u"\\/\"':;\r\n\t", begin), folded.size());
      const std::u16string_view name = text.substr(begin, end - begin);
      if (fold(name) != u"public") add(Kind::person, name);
    }
}

// One that the trace leaves out has no name any more.
void OtherNames::addIdentifier(std::u16string_view name) {
  if (!name.starts_with(u"(identifier ")) add(Kind::identifier, name);
}

void OtherNames::addFromTrace(std::string_view line) {
  const Json object = Json::parse(withMarks(line), nullptr, false);
  if (!object.is_object()) {
    addFolders(text::fromUtf8(line));
    return;
  }
  const auto member = textOf(object.value("member", Json()));
  const Json arguments = object.value("arguments", Json::array());
  if (member && !arguments.empty())
    if (const auto first = textOf(arguments[0])) {
      if (*member == u"RegisterPBX" || *member == u"Login") add(Kind::exchange, *first);
      if (*member == u"LogOut" || *member == u"CancelRequest") addIdentifier(*first);
    }
  const std::int64_t number =
      object.value("number", Json(0)).is_number_integer() ? object.value("number", std::int64_t{0}) : 0;
  if (member == u"LoginID") asked_ = number;
  if (number != 0 && number == asked_)
    if (const auto answer = textOf(object.value("answer", Json()))) addIdentifier(*answer);
  if (const auto exchange = textOf(object.value("exchange", Json()))) add(Kind::exchange, *exchange);
  for (const auto& [name, value] : object.items())
    if (const auto text = textOf(value)) addFolders(*text);
}

const std::u16string* OtherNames::whole(std::u16string_view text) const {
  const std::u16string folded = fold(trimmed(text));
  const auto found =
      std::find_if(names_.begin(), names_.end(), [&](const Name& name) { return name.folded == folded; });
  return found == names_.end() ? nullptr : &found->other;
}

std::u16string OtherNames::in(std::u16string_view text) const {
  if (const std::u16string* other = whole(text)) return *other;
  const std::u16string folded = fold(text);
  std::u16string out;
  for (std::size_t at = 0; at < text.size();) {
    const auto found = std::find_if(names_.begin(), names_.end(), [&](const Name& name) {
      return name.folded.size() >= shortest && folded.compare(at, name.folded.size(), name.folded) == 0;
    });
    if (found == names_.end()) {
      out += text[at++];
    } else {
      out += found->other;
      at += found->folded.size();
    }
  }
  return out;
}

std::string OtherNames::inJson(std::string_view line) const {
  Json object = Json::parse(withMarks(line), nullptr, false);
  if (object.is_discarded()) return text::toUtf8(in(text::fromUtf8(line)));
  const auto replace = [&](const auto& self, Json& value) -> void {
    if (value.is_string()) {
      value = text::toUtf8(in(text::fromUtf8(value.get<std::string>())));
    } else if (value.is_array()) {
      for (Json& one : value) self(self, one);
    } else if (value.is_object()) {
      for (auto& [name, one] : value.items())
        if (std::find(std::begin(ownWords), std::end(ownWords), name) == std::end(ownWords)) self(self, one);
    }
  };
  replace(replace, object);
  return withoutMarks(object.dump(-1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace vordane::tools

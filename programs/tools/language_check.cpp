#include "language_check.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "faults/kind_lists.h"
#include "language/comLanguage.h"
#include "language/comTools.h"
#include "language/form_controls.h"
#include "language/message_numbers.h"
#include "language/row_values.h"
#include "platform/control_types.h"
#include "platform/grid_columns.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using text::toUtf8;

using language::keepDesigned;

// Titles and labels of later kinds stand behind the product's own texts.
constexpr bool leavesOwnTexts(const faults::FaultKind& row) {
  return !message::isOwn(row.title) && !message::isOwn(row.label);
}
static_assert(faults::all(leavesOwnTexts),
              "faultKinds: a title or label is one of the product's own texts; take the next number behind "
              "the last one in data/language/en/messages.tsv");
constexpr bool avoidsUnusedTexts(const faults::FaultKind& row) {
  return !message::isUnused(row.title) && !message::isUnused(row.label);
}
static_assert(faults::all(avoidsUnusedTexts), "faultKinds: a title or label is a number that stays empty");

std::string inQuotes(std::u16string_view text) {
  return "\"" + toUtf8(text) + "\"";
}

// One language under the check; every complaint names a row or, without one, the table.
class Checker {
 public:
  Checker(const LanguageSource& source, Problems& problems) : source_(source), problems_(problems) {}

  void run() {
    messages();
    lists();
    forms();
    controls();
    accessKeys();
    headings();
    project();
    boxes(source_.boxes, box::all);
    boxes(source_.common_boxes, {});
    help();
    pictures();
  }

 private:
  void complain(const SourceRow& row, const std::string& what) {
    problems_.push_back(row.place + ": " + what);
  }
  void missing(const char* table, const std::string& what) {
    problems_.push_back(source_.name + "/" + table + ": " + what + " is missing");
  }

  std::optional<std::int32_t> number(const SourceRow& row, std::size_t column) {
    const auto value = text::parseInteger(row.fields[column]);
    if (!value) complain(row, inQuotes(row.fields[column]) + " is not a number");
    return value;
  }

  void messages() {
    std::map<std::int32_t, const SourceRow*> found;
    for (const SourceRow& row : source_.messages) {
      const auto id = number(row, 0);
      if (!id) continue;
      if (*id < 0 || *id >= messageCount)
        complain(row, "there is no message " + std::to_string(*id));
      else if (!found.emplace(*id, &row).second)
        complain(row, "message " + std::to_string(*id) + " stands twice");
      else
        messageText(row, static_cast<std::size_t>(*id));
    }
    for (std::int32_t id = 0; id < messageCount; ++id)
      if (found.count(id) == 0) missing("messages", "message " + std::to_string(id));
  }

  void messageText(const SourceRow& row, std::size_t id) {
    const bool empty = row.fields[1].empty();
    if (empty && !message::isUnused(id))
      complain(row, "the text of message " + std::to_string(id) + " is empty");
    if (!empty && message::isUnused(id)) complain(row, "message " + std::to_string(id) + " is never shown");
  }

  void lists() {
    std::map<std::u16string, std::set<std::int32_t>> found;
    for (const SourceRow& row : source_.lists) {
      const auto index = number(row, 1);
      if (!index) continue;
      if (!isKindList(row.fields[0]))
        complain(row, "there is no list " + inQuotes(row.fields[0]));
      else if (!found[row.fields[0]].insert(*index).second)
        complain(row, "code " + std::to_string(*index) + " of " + toUtf8(row.fields[0]) + " stands twice");
      if (row.fields[2].empty()) complain(row, "the text is empty (\"-\" stands for none)");
    }
    for (const KindList& list : kindLists) listLength(list, found[std::u16string(list.name())]);
  }

  static bool isKindList(std::u16string_view name) {
    return std::any_of(kindLists.begin(), kindLists.end(),
                       [&](const KindList& list) { return list.name() == name; });
  }

  // Codes must run from 0 without a gap, since an item's position is its code.
  void listLength(const KindList& list, const std::set<std::int32_t>& codes) {
    const int length = codes.empty() ? 0 : *codes.rbegin() + 1;
    if (list.atLeast ? length < list.items : length != list.items)
      problems_.push_back(source_.name + "/lists: " + toUtf8(list.name()) + " has " + std::to_string(length) +
                          " items instead of " + std::to_string(list.items) +
                          (list.atLeast ? " or more" : ""));
    for (int code = 0; code < length; ++code)
      if (codes.count(code) == 0)
        missing("lists", "code " + std::to_string(code) + " of " + toUtf8(list.name()));
    if (!codes.empty() && *codes.begin() < 0)
      problems_.push_back(source_.name + "/lists: " + toUtf8(list.name()) + " has a code below 0");
  }

  void fontSize(const SourceRow& row, std::u16string_view size) {
    const auto value = text::parseInteger(size);
    if (!value || *value < 1) complain(row, inQuotes(size) + " is no font size");
  }

  void forms() {
    int rows = 0;
    for (const SourceRow& row : source_.forms) {
      if (row.fields[0] != formName) complain(row, "there is no window " + inQuotes(row.fields[0]));
      rows += row.fields[0] == formName ? 1 : 0;
      escapes(row, row.fields[1]);
      fontSize(row, row.fields[3]);
    }
    if (rows != 1) problems_.push_back(source_.name + "/forms: one row for the window is needed");
  }

  static std::u16string_view typeOf(std::u16string_view control) {
    if (isKindList(control)) return u"ComboBox";
    for (const FormControl& known : formControls)
      if (known.name == control) return known.typeName;
    return {};
  }

  void controls() {
    std::set<std::u16string> found;
    for (const SourceRow& row : source_.controls) {
      const std::u16string_view type = typeOf(row.fields[0]);
      if (type.empty()) {
        complain(row, "there is no control " + inQuotes(row.fields[0]));
        continue;
      }
      if (!found.insert(row.fields[0]).second) complain(row, toUtf8(row.fields[0]) + " stands twice");
      const window::Properties properties = window::designedProperties(type);
      property(row, row.fields[1], properties.count(u"Caption") != 0, "caption");
      property(row, row.fields[4], properties.count(u"ToolTipText") != 0, "tool tip");
      if (row.fields[2] != keepDesigned) fontSize(row, row.fields[3]);
    }
    const auto want = [&](std::u16string_view name) {
      if (found.count(std::u16string(name)) == 0) missing("controls", toUtf8(name));
    };
    for (const FormControl& control : formControls) want(control.name);
  }

  // A text for a property that the type lacks would end the localising of the whole window.
  void property(const SourceRow& row, std::u16string_view text, bool has, const char* what) {
    if (!has && text != keepDesigned)
      complain(row, toUtf8(row.fields[0]) + " has no " + what + ": it must be -1");
  }

  static char16_t accessKey(std::u16string_view caption) {
    const auto mark = caption.find(u'&');
    if (mark == std::u16string_view::npos || mark + 1 >= caption.size()) return 0;
    return text::upper(caption[mark + 1]);
  }

  // The keys of one window, each with what it opens.
  using Keys = std::map<char16_t, std::string>;

  void takeKey(Keys& keys, const SourceRow& row, const std::string& owner) {
    const char16_t key = accessKey(row.fields[1]);
    if (key == 0) return;
    const auto [before, fresh] = keys.emplace(key, owner);
    if (!fresh) complain(row, "the access key " + inQuotes({&key, 1}) + " is that of " + before->second);
  }

  void accessKeys() {
    KeysByPlace keys;
    for (const SourceRow& row : source_.controls)
      if (typeOf(row.fields[0]) != u"Menu") takeKey(keys.window, row, toUtf8(row.fields[0]));
    for (const SourceRow& row : source_.messages)
      if (const auto id = text::parseInteger(row.fields[0])) messageKey(keys, row, *id);
  }

  // Some messages are captions: of the main window's controls, or of a menu.
  struct KeysByPlace {
    Keys window, paneMenu, listMenu, frameMenu;
  };
  void messageKey(KeysByPlace& keys, const SourceRow& row, std::int32_t id) {
    const auto isOneOf = [id](const auto& numbers) {
      return std::any_of(numbers.begin(), numbers.end(),
                         [id](std::size_t number) { return static_cast<std::int32_t>(number) == id; });
    };
    const auto nameOf = [](std::size_t number) { return "message " + std::to_string(number); };
    const std::string owner = nameOf(static_cast<std::size_t>(id));
    for (const auto& [first, other] : message::captionsInTurn)
      if (static_cast<std::int32_t>(other) == id) return sameKey(keys.window, row, owner, nameOf(first));
    if (isOneOf(message::windowKeys)) return needKey(keys.window, row, owner);
    if (isOneOf(message::paneMenuKeys)) return needKey(keys.paneMenu, row, owner);
    if (isOneOf(message::listMenuKeys)) return needKey(keys.listMenu, row, owner);
    if (isOneOf(message::frameMenuKeys)) return needKey(keys.frameMenu, row, owner);
    if (accessKey(row.fields[1]) != 0) complain(row, owner + " is no caption: it takes no access key");
  }

  void sameKey(const Keys& keys, const SourceRow& row, const std::string& owner, const std::string& first) {
    const auto found = keys.find(accessKey(row.fields[1]));
    if (found == keys.end() || found->second != first)
      complain(row, owner + " has another access key than " + first);
  }

  void needKey(Keys& keys, const SourceRow& row, const std::string& owner) {
    if (accessKey(row.fields[1]) == 0) complain(row, owner + " has no access key");
    takeKey(keys, row, owner);
  }

  void headings() {
    std::set<std::int32_t> found;
    for (const SourceRow& row : source_.headings) {
      const auto column = number(row, 1);
      if (!column) continue;
      if (row.fields[0] != u"grdDisplayFault" || *column < 0 || *column >= window::columnCount)
        complain(row, "there is no such column");
      else if (!found.insert(*column).second)
        complain(row, "column " + std::to_string(*column) + " stands twice");
      if (row.fields[2].empty()) complain(row, "the heading is empty");
    }
    for (int column = 0; column < window::columnCount; ++column)
      if (found.count(column) == 0) missing("headings", "column " + std::to_string(column));
  }

  void project() {
    std::set<std::u16string> found;
    for (const SourceRow& row : source_.project) {
      const bool known =
          std::any_of(comLanguage::projectTexts.begin(), comLanguage::projectTexts.end(),
                      [&](const comLanguage::ProjectText& text) { return text.column == row.fields[0]; });
      if (!known) complain(row, "there is no property " + inQuotes(row.fields[0]));
      if (!found.insert(row.fields[0]).second) complain(row, toUtf8(row.fields[0]) + " stands twice");
      if (row.fields[1].empty()) complain(row, "the text is empty");
    }
    for (const comLanguage::ProjectText& text : comLanguage::projectTexts)
      if (found.count(std::u16string(text.column)) == 0) missing("project", toUtf8(text.column));
  }

  void boxes(const SourceRows& rows, std::span<const std::int16_t> wanted) {
    std::set<std::int32_t> found;
    for (const SourceRow& row : rows) {
      const auto id = number(row, 0);
      if (!id) continue;
      if (!found.insert(*id).second) complain(row, "box " + std::to_string(*id) + " stands twice");
      if (row.fields[1].empty()) complain(row, "the prompt is empty");
      escapes(row, row.fields[1]);
      escapes(row, row.fields[3]);
      buttons(row);
      if (row.fields[5] != keepDesigned) static_cast<void>(number(row, 5));
    }
    for (const std::int16_t id : wanted)
      if (found.count(id) == 0) missing("boxes", "box " + std::to_string(id));
  }

  void buttons(const SourceRow& row) {
    for (const std::u16string& name : text::split(row.fields[2], u'+'))
      if (comTools::ButtonStyleValue(name) == 0 && name != u"vbOKOnly" && name != u"vbDefaultButton1" &&
          name != u"vbApplicationModal")
        complain(row, inQuotes(name) + " is no button style");
  }

  // Tokens lose the blanks around them, and a blank would shift what is cut off behind the token.
  void escapes(const SourceRow& row, std::u16string_view stored) {
    for (const std::u16string& token : text::split(stored, u'&'))
      if (token.empty() || token.front() == u' ' || token.back() == u' ')
        complain(row, "the piece " + inQuotes(token) +
                          " is empty or has a blank beside it; %SP is a blank, %AND an &");
  }

  void help() {
    std::set<std::u16string> found;
    for (const SourceRow& row : source_.help) {
      if (typeOf(row.fields[0]).empty()) complain(row, "there is no control " + inQuotes(row.fields[0]));
      if (!found.insert(row.fields[0]).second) complain(row, toUtf8(row.fields[0]) + " stands twice");
      if (row.fields[1].empty()) complain(row, "the text is empty");
    }
    for (const std::u16string_view name : whatsThisControls)
      if (found.count(std::u16string(name)) == 0) missing("help", toUtf8(name));
  }

  void pictures() {
    for (const SourceRow& row : source_.pictures) {
      if (typeOf(row.fields[0]) != u"PictureBox") complain(row, toUtf8(row.fields[0]) + " takes no picture");
      if (row.fields[2] != u"me" && typeOf(row.fields[2]).empty())
        complain(row, "there is no control " + inQuotes(row.fields[2]));
      static_cast<void>(number(row, 3));
    }
    for (const SourceRow& row : source_.picture_sets)
      if (const auto set = number(row, 0); set && *set < 1) complain(row, "sets are numbered from 1");
  }

  const LanguageSource& source_;
  Problems& problems_;
};

// What of a row must be alike in every language, under the row's key.
using Signature = std::map<std::u16string, std::u16string>;

std::u16string placesIn(std::u16string_view text) {
  std::set<char16_t> places;
  for (std::size_t at = 0; at + 2 < text.size(); ++at)
    if (text[at] == u'{' && text[at + 2] == u'}') places.insert(text[at + 1]);
  return {places.begin(), places.end()};
}

std::u16string substitutionsIn(std::u16string_view text) {
  std::u16string marks;
  for (const std::u16string& token : text::split(text, u'&'))
    if (text::contains(token, u"%ST")) marks += u"%ST";
  return marks;
}

Signature signatureOf(const LanguageSource& source) {
  Signature signature;
  const auto add = [&](const char16_t* table, const std::u16string& key, std::u16string value) {
    signature[std::u16string(table) + u" " + key] = std::move(value);
  };
  for (const SourceRow& row : source.messages) add(u"message", row.fields[0], placesIn(row.fields[1]));
  for (const SourceRow& row : source.lists) add(u"list", row.fields[0] + u" " + row.fields[1], {});
  for (const FormControl& control : formControls)
    for (const SourceRow& row : source.controls)
      if (row.fields[0] == control.name) add(u"control", row.fields[0], {});
  for (const SourceRow& row : source.boxes)
    add(u"box", row.fields[0], row.fields[2] + u" " + substitutionsIn(row.fields[1]));
  for (const SourceRow& row : source.common_boxes)
    add(u"common box", row.fields[0], row.fields[2] + u" " + substitutionsIn(row.fields[1]));
  for (const SourceRow& row : source.help) add(u"help", row.fields[0], {});
  return signature;
}

}  // namespace

void checkLanguage(const LanguageSource& source, Problems& problems) {
  Checker(source, problems).run();
}

void compareLanguages(std::span<const LanguageSource> sources, Problems& problems) {
  if (sources.empty()) return;
  const Signature first = signatureOf(sources.front());
  for (const LanguageSource& other : sources.subspan(1)) {
    const Signature second = signatureOf(other);
    const std::string both = sources.front().name + " and " + other.name;
    for (const auto& [key, value] : first) {
      const auto found = second.find(key);
      if (found == second.end())
        problems.push_back(other.name + ": " + toUtf8(key) + " is missing, " + sources.front().name +
                           " has it");
      else if (found->second != value)
        problems.push_back(both + ": " + toUtf8(key) + " has " + inQuotes(value) + " in one and " +
                           inQuotes(found->second) + " in the other");
    }
    for (const auto& [key, value] : second)
      if (first.count(key) == 0)
        problems.push_back(sources.front().name + ": " + toUtf8(key) + " is missing, " + other.name +
                           " has it");
  }
}

}  // namespace vordane::tools

// Words that belong together in the shipped texts of a language: one thing has one name wherever it is shown,
// and a text says what the program does.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "language/message_numbers.h"
#include "language_source.h"
#include "places.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

constexpr int moduleBackInService = 36;  // of the fault texts

class ShippedWords : public testing::TestWithParam<const char*> {
 protected:
  ShippedWords() {
    Problems problems;
    source_ = readLanguageSource(test::sourceFolder() / "data/language" / GetParam(), problems);
    EXPECT_TRUE(problems.empty());
  }
  // A column of the row whose first one is `key`.
  static std::u16string field(const SourceRows& rows, std::u16string_view key, std::size_t column) {
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const SourceRow& entry) { return entry.fields.front() == key; });
    if (row == rows.end()) ADD_FAILURE() << "no row " << text::toUtf8(key);
    return row == rows.end() ? std::u16string{} : row->fields.at(column);
  }
  std::u16string message(std::size_t number) const {
    return field(source_.messages, text::fromUtf8(std::to_string(number)), 1);
  }
  std::u16string caption(std::u16string_view control) const { return field(source_.controls, control, 1); }
  std::u16string tip(std::u16string_view control) const { return field(source_.controls, control, 4); }
  std::u16string application(std::u16string_view property) const {
    return field(source_.project, property, 1);
  }
  std::u16string box(std::u16string_view number) const { return field(source_.boxes, number, 1); }

 private:
  LanguageSource source_;
};

bool begins(std::u16string_view text, std::u16string_view with) {
  return !with.empty() && text::equalIgnoringCase(text::left(text, with.size()), with);
}
bool holds(std::u16string_view text, std::u16string_view part) {
  return text::contains(text::toLower(text), text::toLower(part));
}
std::u16string beforeColon(const std::u16string& text) {
  return text.substr(0, text.find(u':'));
}

// The word in the lamp is the one beside it and in its tool tip.
TEST_P(ShippedWords, ALampHasOneName) {
  const struct {
    const char16_t* control;
    std::size_t alarm, clear;
  } lamps[] = {{u"lblMJ", message::lampMajorAlarm, message::lampMajorClear},
               {u"lblMN", message::lampMinorAlarm, message::lampMinorClear}};
  for (const auto& lamp : lamps) {
    const std::u16string name = beforeColon(message(lamp.alarm));
    EXPECT_EQ(beforeColon(message(lamp.clear)), name);
    EXPECT_TRUE(begins(caption(lamp.control), name)) << text::toUtf8(name);
    EXPECT_TRUE(holds(tip(lamp.control), name)) << text::toUtf8(name);
  }
  EXPECT_NE(beforeColon(message(message::lampMajorAlarm)), beforeColon(message(message::lampMinorAlarm)));
}

// The generation of the processor decides how many bits of a module's number count.
TEST_P(ShippedWords, TheProcessorsPartTellsTheBitsOfModuleNumbers) {
  const std::u16string module(text::left(message(moduleBackInService), 5));
  const std::u16string wide = message(message::statusWide), narrow = message(message::statusNarrow);
  for (const auto& text : {wide, narrow}) EXPECT_TRUE(holds(text, module)) << text::toUtf8(text);
  EXPECT_TRUE(holds(wide, u"8") && !holds(wide, u"6")) << text::toUtf8(wide);
  EXPECT_TRUE(holds(narrow, u"6") && !holds(narrow, u"8")) << text::toUtf8(narrow);
}

// One program at its work asks for patience, one that answers nothing for a decision: the box of the latter
// has the buttons Retry and Cancel, that of the other OK alone.
TEST_P(ShippedWords, ABusyProgramIsRetriedAndAWorkingOneWaitedFor) {
  struct Words {
    const char16_t *retry, *cancel, *wait;
  };
  const std::map<std::string, Words> languages{{"en", {u"retry", u"cancel", u"please wait"}},
                                               {"ru", {u"повторите", u"отмените", u"подождите"}},
                                               {"ja", {u"再試行", u"取り消", u"お待ちください"}}};
  const Words& words = languages.at(GetParam());
  const std::u16string busy = application(u"OleServerBusyMsgText"),
                       pending = application(u"OleRequestPendingMsgText");
  EXPECT_TRUE(holds(busy, words.retry) && holds(busy, words.cancel)) << text::toUtf8(busy);
  EXPECT_FALSE(holds(busy, words.wait)) << text::toUtf8(busy);
  EXPECT_TRUE(holds(pending, words.wait)) << text::toUtf8(pending);
  EXPECT_FALSE(holds(pending, words.retry) || holds(pending, words.cancel)) << text::toUtf8(pending);
}

INSTANTIATE_TEST_SUITE_P(Languages, ShippedWords, testing::Values("en", "ru", "ja"),
                         [](const auto& language) { return std::string(language.param); });

// What reads as something else when it is put another way.
struct Wording {
  const char *language, *broken, *notPrinted;
};
class Wordings : public ShippedWords {
 protected:
  static const Wording& wanted() {
    static const Wording all[] = {
        {"en", "The run was broken off: no program uses the fault display any more",
         "Reports are printed by the maintenance suite. The fault display is running without it, so nothing "
         "can "
         "be printed here."},
        {"ru", "Прогон прерван: окном неисправностей больше не пользуется ни одна программа",
         "Отчёты печатает основная программа комплекса. Окно неисправностей запущено без неё, поэтому "
         "печатать "
         "отсюда нельзя."},
        {"ja", "実行は中断されました: 障害表示を使うプログラムがなくなりました",
         "レポートの印刷は保守システム本体が行います。障害表示が単独で起動されているため、ここからは印刷でき"
         "ません。"}};
    return *std::find_if(std::begin(all), std::end(all),
                         [](const Wording& entry) { return entry.language == std::string(GetParam()); });
  }
};

TEST_P(Wordings, OfARunWithoutAHostAndOfAReportWithoutASuite) {
  EXPECT_EQ(text::toUtf8(message(message::runLetGo)), wanted().broken);
  EXPECT_EQ(text::toUtf8(box(u"900")), wanted().notPrinted);
}

INSTANTIATE_TEST_SUITE_P(Languages, Wordings, testing::Values("en", "ru", "ja"),
                         [](const auto& language) { return std::string(language.param); });

// English only: one word for the button, its bar and its help.
TEST(EnglishWords, ATextIsFound) {
  Problems problems;
  const LanguageSource source = readLanguageSource(test::sourceFolder() / "data/language/en", problems);
  for (const SourceRows* rows : {&source.messages, &source.controls, &source.help, &source.boxes})
    for (const SourceRow& row : *rows)
      for (const std::u16string& field : row.fields)
        EXPECT_FALSE(holds(field, u"look up") || holds(field, u"lookup ")) << row.place;
}

}  // namespace
}  // namespace vordane::tools

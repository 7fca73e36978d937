#include "guide_kinds.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "faults/cFaultDisplay.h"
#include "faults/kind_table.h"
#include "guide_markdown.h"
#include "text/numbers.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using faults::FaultKind;
using faults::Field;
using Source = cFaultDisplay::Source;

constexpr std::u16string_view hexDigits = u"0123456789ABCDEF";
constexpr int dataBytes = 8;
constexpr std::size_t enumerated = 4;  // digits of a place whose values are all tried

// What stands in a line: a text that is always there, or a place for what bytes say.
struct Item {
  std::u16string text;
  std::vector<Source> sources;  // none: a text that is always there
};
using Line = std::vector<Item>;
using Lines = std::vector<Line>;

std::u16string zeros() {
  std::u16string data;
  for (int i = 0; i < dataBytes; ++i) data += i == 0 ? u"00" : u" 00";
  return data;
}

// The characters of the data that sources name, from the first to the last.
std::vector<std::size_t> charactersOf(const std::vector<Source>& sources) {
  std::vector<std::size_t> places;
  for (const Source& source : sources)
    for (std::size_t at = source.begin; at < source.end; ++at) places.push_back(at);
  return places;
}

// What is always there, by which two forms of the lines are told apart.
std::u16string constants(const Lines& lines) {
  std::u16string all;
  for (const Line& line : lines) {
    for (const Item& item : line)
      if (item.sources.empty()) all += item.text;
    all += u'\n';
  }
  return all;
}

struct Form {
  std::u16string data;  // that gives it
  Lines lines;
};

// A kind as the decoder shows it.
class Decoded {
 public:
  Decoded(const FaultTextTable& texts, int kind) : wide_(texts, yes_), narrow_(texts, no_) {
    record_ = {hexDigits[static_cast<std::size_t>(kind / 16)],
               hexDigits[static_cast<std::size_t>(kind % 16)]};
  }

  // The lines between the title and the data.
  Lines lines(const std::u16string& data, bool wide = true) const {
    Lines lines(1);
    for (cFaultDisplay::Piece& piece : (wide ? wide_ : narrow_).explain(record_, data, {})) {
      if (piece.sources.empty() && piece.text == text::crlf)
        lines.emplace_back();
      else
        add(lines.back(), {std::move(piece.text), std::move(piece.sources)});
    }
    if (!lines.empty()) lines.erase(lines.begin());
    if (!lines.empty()) lines.pop_back();
    return lines;
  }

 private:
  // Places side by side are one, and so are texts.
  static void add(Line& line, Item item) {
    if (line.empty() || line.back().sources.empty() != item.sources.empty())
      return line.push_back(std::move(item));
    line.back().text += item.text;
    for (const Source& source : item.sources) line.back().sources.push_back(source);
  }

  static constexpr bool yes_ = true, no_ = false;
  std::u16string record_;
  cFaultDisplay wide_, narrow_;
};

void putDigits(std::u16string& data, const std::vector<std::size_t>& places, unsigned value) {
  for (std::size_t n = places.size(); n-- > 0; value /= 16) data[places[n]] = hexDigits[value % 16];
}

// --- what a place shows for its values

using Outcomes = std::vector<std::u16string>;  // by value

bool isNumber(std::u16string_view text, std::int64_t value) {
  const auto parsed = text::parseInteger(text);
  return parsed && *parsed == value;
}

bool allAre(const Outcomes& outcomes, const std::function<bool(unsigned, const std::u16string&)>& right) {
  for (unsigned value = 0; value < outcomes.size(); ++value)
    if (!right(value, outcomes[value])) return false;
  return true;
}

std::u16string charactersOfValue(unsigned value, std::size_t digits) {
  std::u16string text(digits, u'0');
  for (std::size_t n = digits; n-- > 0; value /= 16) text[n] = hexDigits[value % 16];
  return text;
}

// How many of the lowest bits decide; nothing when all do.
std::optional<int> lowBitsOf(const Outcomes& outcomes) {
  int bits = 1;
  for (unsigned period = 2; period < outcomes.size(); period *= 2, ++bits)
    if (allAre(outcomes,
               [&](unsigned value, const std::u16string& text) { return text == outcomes[value % period]; }))
      return bits;
  return std::nullopt;
}

// Digits that are read as a decimal number, -1 where it is above a byte.
bool isDecimalOfDigits(unsigned value, const std::u16string& text) {
  const std::u16string characters = charactersOfValue(value, 4);
  if (!std::all_of(characters.begin(), characters.end(), text::isDecimalDigit)) return true;
  const std::int32_t number = text::decimalField(characters);
  return isNumber(text, number > 255 ? -1 : number);
}

class Reference {
 public:
  Reference(const FaultTextTable& texts, const GuideWords& words) : texts_(texts), words_(words) {}

  void add(const FaultKind& row) {
    heading(text::toUtf8(charactersOfValue(row.kind, 2)) + " · ", row.title, kindAnchor(row.kind));
    const Decoded decoded(texts_, row.kind);
    const std::vector<Form> forms = formsOf(decoded, row);
    if (row.family == faults::Family::titleOnly) {
      out_ += words_(Word::titleOnly) + "\n\n";
      return;
    }
    for (const Form& form : forms) show(form, &form == &forms.front());
    told_.clear();
    for (const Form& form : forms)
      for (std::size_t line = 0; line < form.lines.size(); ++line) meanings(decoded, form, line);
  }

  void addUnknown() {
    heading({}, faults::defaultKind.title, unknownKindAnchor);
    out_ += words_(Word::unknown) + "\n\n";
  }

  std::string take() { return std::move(out_); }

 private:
  void heading(const std::string& before, int title, const std::string& anchor) {
    const std::u16string* const text = texts_.message(title);
    const std::string shown = text == nullptr ? std::string{} : text::toUtf8(*text);
    out_ += "### " + before + markdownText(shown) + " {#" + anchor + "}\n\n";
  }

  // Every form that the lines take, the one of zeros first.
  static std::vector<Form> formsOf(const Decoded& decoded, const FaultKind& row) {
    std::vector<Form> forms{{zeros(), decoded.lines(zeros())}};
    for (const Field& field : row.fields) {
      if (field.start == 0) continue;
      const std::vector<std::size_t> places =
          charactersOf({{field.start - 1U, field.start - 1U + field.length}});
      for (unsigned value = 0; value < (field.length == 1 ? 16U : 256U); ++value) {
        std::u16string data = zeros();
        putDigits(data, places, value);
        Lines lines = decoded.lines(data);
        const std::u16string form = constants(lines);
        if (std::none_of(forms.begin(), forms.end(),
                         [&](const Form& known) { return constants(known.lines) == form; }))
          forms.push_back({std::move(data), std::move(lines)});
      }
    }
    return forms;
  }

  void show(const Form& form, bool first) {
    out_ += words_(first ? Word::shown : Word::shownElse) + "\n\n";
    for (const Line& line : form.lines) {
      std::string text;
      for (const Item& item : line)
        text += item.sources.empty() ? text::toUtf8(item.text) : "⟨" + nameOf(item.sources) + "⟩";
      out_ += "    " + text + "\n";
    }
    out_ += "\n";
  }

  // "byte 3", "byte 1, low digit", "bytes 3 to 4": data characters 3n and 3n + 1 are byte n + 1.
  std::string nameOf(const std::vector<Source>& sources) const {
    const std::vector<std::size_t> places = charactersOf(sources);
    const auto [low, high] = std::minmax_element(places.begin(), places.end());
    const std::string first = std::to_string(*low / 3 + 1), last = std::to_string(*high / 3 + 1);
    if (first != last) return words_(Word::bytes, first, last);
    if (places.size() > 1) return words_(Word::byte, first);
    return words_(*low % 3 == 0 ? Word::highDigit : Word::lowDigit, first);
  }

  void meanings(const Decoded& decoded, const Form& form, std::size_t line) {
    for (std::size_t n = 0; n < form.lines[line].size(); ++n) {
      const std::vector<Source>& sources = form.lines[line][n].sources;
      if (sources.empty()) continue;
      const std::vector<std::size_t> places = charactersOf(sources);
      const std::string meaning = places.size() > enumerated ? ofDigits(decoded, form, line, n, places)
                                                             : ofValues(decoded, form, line, n, places);
      const std::string whole = "**" + nameOf(sources) + "**: " + meaning + "\n\n";
      if (std::find(told_.begin(), told_.end(), whole) != told_.end()) continue;
      told_.push_back(whole);
      out_ += whole;
    }
  }

  // What stands at that place of the lines; nothing when they have another form.
  static std::optional<std::u16string> textAt(const Lines& lines, const Form& form, std::size_t line,
                                              std::size_t n) {
    if (line >= lines.size() || n >= lines[line].size()) return std::nullopt;
    if (constants(lines) != constants(form.lines)) return std::nullopt;
    return lines[line][n].text;
  }

  static Outcomes outcomes(const Decoded& decoded, const Form& form, std::size_t line, std::size_t n,
                           const std::vector<std::size_t>& places, bool wide) {
    Outcomes all(std::size_t{1} << (4 * places.size()));
    std::u16string data = form.data;
    for (unsigned value = 0; value < all.size(); ++value) {
      putDigits(data, places, value);
      all[value] = textAt(decoded.lines(data, wide), form, line, n).value_or(u"\n");  // another form
    }
    return all;
  }

  std::string ofValues(const Decoded& decoded, const Form& form, std::size_t line, std::size_t n,
                       const std::vector<std::size_t>& places) {
    const Outcomes wide = outcomes(decoded, form, line, n, places, true);
    std::string meaning = meaningOf(wide, places);
    if (places.size() > 2) return meaning;
    const Outcomes narrow = outcomes(decoded, form, line, n, places, false);
    if (narrow != wide) meaning += " " + words_(Word::narrow, std::to_string(lowBitsOf(narrow).value_or(0)));
    return meaning;
  }

  std::string meaningOf(const Outcomes& all, const std::vector<std::size_t>& places) {
    const auto other = [](const std::u16string& text) { return text == u"\n"; };
    const auto decimal = [&](unsigned value, const std::u16string& text) {
      return other(text) || isNumber(text, value);
    };
    const auto whole = [&](unsigned value, const std::u16string& text) {
      return other(text) || text == charactersOfValue(value, places.size());
    };
    const auto signedNumber = [&](unsigned value, const std::u16string& text) {
      return other(text) || isNumber(text, static_cast<std::int16_t>(value));
    };
    if (allAre(all, decimal)) return words_(Word::number);
    if (allAre(all, whole)) return words_(Word::asItIs);
    if (places.size() == 4 && allAre(all, signedNumber))
      return words_(Word::signedOf, std::to_string(places.front() / 3 + 1));
    if (places.size() == 4 && allAre(all, isDecimalOfDigits)) return words_(Word::decimal);
    const auto bits = lowBitsOf(all);
    if (!bits) return table(all, places.size());
    const Outcomes part(all.begin(), all.begin() + (1 << *bits));
    const std::string before = words_(*bits == 1 ? Word::lowBit : Word::lowBits, std::to_string(*bits));
    if (allAre(part, decimal)) return before + " " + words_(Word::number);
    return before + " " + table(part, places.size());
  }

  // Values with texts, neighbours with the same text in one row; numbers stand for all that show themselves.
  std::string table(const Outcomes& all, std::size_t digits) {
    std::string rows;
    bool numbers = false, nothing = false;
    for (unsigned value = 0; value < all.size();) {
      unsigned last = value;
      while (last + 1 < all.size() && all[last + 1] == all[value]) ++last;
      const bool itself = last == value && isNumber(all[value], value);
      numbers |= itself;
      nothing |= all[value].empty();
      if (!itself && !all[value].empty() && all[value] != u"\n")
        rows += "| " + range(value, last, digits) + " | " + markdownText(text::toUtf8(all[value])) + " |\n";
      value = last + 1;
    }
    if (numbers) rows += "| " + words_(Word::others) + " | " + words_(Word::number) + " |\n";
    if (nothing) rows += "| " + words_(Word::others) + " | " + words_(Word::nothing) + " |\n";
    return "\n\n| " + words_(Word::value) + " | " + words_(Word::text) + " |\n|:---|:------|\n" + rows;
  }

  static std::string range(unsigned first, unsigned last, std::size_t digits) {
    const auto shown = [digits](unsigned value) {
      std::u16string text = charactersOfValue(value, digits);
      if (digits == 4) text.insert(2, u" ");
      return text::toUtf8(text);
    };
    return first == last ? shown(first) : shown(first) + "–" + shown(last);
  }

  // More digits than can all be tried: which of them show, and what the others do.
  std::string ofDigits(const Decoded& decoded, const Form& form, std::size_t line, std::size_t n,
                       const std::vector<std::size_t>& places) {
    std::string shown, hidden;
    bool goesOn = true;
    std::u16string data = form.data;
    for (const std::size_t place : places) data[place] = u'1';
    for (const char16_t digit : hexDigits) {
      data[places.front()] = digit;
      const std::u16string text = textAt(decoded.lines(data), form, line, n).value_or(u"");
      const bool shows = text.size() == places.size();
      if (!shows) goesOn = text.size() + 1 == places.size();
      std::string& list = shows ? shown : hidden;
      if (!list.empty()) list += " ";
      list += static_cast<char>(digit);
    }
    return words_(goesOn ? Word::digitsSkip : Word::digitsStop, shown, hidden);
  }

  const FaultTextTable& texts_;
  const GuideWords& words_;
  std::string out_;
  std::vector<std::string> told_;  // of the kind at hand
};

}  // namespace

std::string kindAnchor(int kind) {
  return "kind-" + text::toUtf8(charactersOfValue(static_cast<unsigned>(kind), 2));
}

std::string kindReference(const FaultTextTable& texts, const GuideWords& words) {
  Reference reference(texts, words);
  for (const FaultKind& row : faults::faultKinds) reference.add(row);
  reference.addUnknown();
  return reference.take();
}

}  // namespace vordane::tools

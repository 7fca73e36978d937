#include "list/flood_words.h"

#include <algorithm>

#include "text/fill.h"
#include "text/numbers.h"

namespace vordane::list {
namespace {

using window::ViewText;

constexpr std::size_t kindsNamed = 3, processorsNamed = 2, dayLength = 11;

std::u16string number(std::size_t value) {
  return text::decimal(static_cast<std::int64_t>(value));
}

std::u16string inBrackets(const std::u16string& title, const std::u16string& processors) {
  return processors.empty() ? title : title + u" (" + processors + u")";
}

std::u16string named(const Flood::Kind& kind) {
  std::u16string processors;
  for (std::size_t i = 0; i < std::min(kind.processors.size(), processorsNamed); ++i)
    processors.append(processors.empty() ? u"" : u", ").append(kind.processors[i]);
  if (kind.processors.size() > processorsNamed) processors += u", …";
  return inBrackets(kind.title, processors);
}

// The day of the end is left out where it is that of the beginning.
std::u16string when(const Flood& flood, window::ViewTexts& texts) {
  const std::u16string first = writtenMinute(flood.times.first), last = writtenMinute(flood.times.last);
  if (first == last) return fillText(texts.text(ViewText::floodMinute), {number(flood.faults), first});
  const bool sameDay = first.substr(0, dayLength) == last.substr(0, dayLength);
  return fillText(texts.text(ViewText::floodMinutes), {number(flood.faults), text::decimal(flood.minutes()),
                                                       first, sameDay ? last.substr(dayLength) : last});
}

}  // namespace

std::u16string floodWords(const Flood& flood, window::ViewTexts& texts) {
  std::u16string words =
      when(flood, texts) + u" " +
      fillText(texts.text(ViewText::floodEnds), {inBrackets(flood.first.title, flood.first.processor),
                                                 inBrackets(flood.last.title, flood.last.processor)});
  std::size_t others = flood.faults;
  for (std::size_t i = 0; i < std::min(flood.kinds.size(), kindsNamed); ++i) {
    const Flood::Kind& kind = flood.kinds[i];
    others -= kind.faults;
    words += i == 0 ? u"\n" : u", ";
    words += fillText(texts.text(ViewText::floodKind), {number(kind.faults), named(kind)});
  }
  if (others > 0) words += u", " + fillText(texts.text(ViewText::floodOthers), {number(others)});
  return words;
}

}  // namespace vordane::list

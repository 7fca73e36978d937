// Any record, under any selection of texts: the decoder must not fail, and must agree with its proof.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "check.h"
#include "faults/recognisable_texts.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::faults {
namespace {

std::u16string joined(const cFaultDisplay::Pieces& pieces) {
  std::u16string text;
  for (const cFaultDisplay::Piece& piece : pieces) text += piece.text;
  return text;
}

void check(const FaultTexts& texts, bool wide, std::u16string_view record, std::u16string_view first,
           std::u16string_view second) {
  const cFaultDisplay display(texts, wide);
  const std::u16string description = display.GetFaultMessage(record, first, second);
  const std::u16string data = std::u16string(first) + u" " + std::u16string(second);
  const cFaultDisplay::Pieces pieces = display.Explain(record, first, second);
  fuzz::require(joined(pieces) == description);
  for (const cFaultDisplay::Piece& piece : pieces)
    for (const cFaultDisplay::Source& source : piece.sources)
      fuzz::require(source.begin < source.end && source.end <= data.size());
  if (description.empty()) return;
  fuzz::require(description.ends_with(u"\r\nM5 M6" + data + u"M7"));
  std::u16string found;
  const std::u16string again = joined(display.ExplainStored(record, description, found));
  fuzz::require(again.empty() || again == description);
}

}  // namespace
}  // namespace vordane::faults

// The first two bytes choose a missing message and a missing list; the rest is a line of three fields.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace vordane;
  if (size < 2) return 0;
  static const FaultTextTable whole = faults::recognisableTexts();
  static faults::TextsWithout some(-1, -1);
  some.without(bytes[0], bytes[1]);
  const std::u16string line = text::fromUtf8({reinterpret_cast<const char*>(bytes) + 2, size - 2});
  const auto fields = text::split(line, u'\t');
  const auto field = [&](std::size_t n) { return n < fields.size() ? fields[n] : std::u16string{}; };
  for (const bool wide : {true, false}) {
    faults::check(whole, wide, field(0), field(1), field(2));
    faults::check(some, wide, field(0), field(1), field(2));
  }
  return 0;
}

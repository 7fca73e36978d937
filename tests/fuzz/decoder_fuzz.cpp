// Any record, under any selection of texts: the decoder must not fail, and must agree with its proof.
#include <cstddef>
#include <cstdint>
#include <memory>
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

void check(const FaultTextTable& texts, bool wide, std::u16string_view record, std::u16string_view first,
           std::u16string_view second) {
  const cFaultDisplay display(texts, wide);
  const std::u16string description = display.GetFaultMessage(record, first, second);
  const std::u16string data = std::u16string(first) + u" " + std::u16string(second);
  const cFaultDisplay::Pieces pieces = display.explain(record, first, second);
  fuzz::require(joined(pieces) == description);
  for (const cFaultDisplay::Piece& piece : pieces)
    for (const cFaultDisplay::Source& source : piece.sources)
      fuzz::require(source.begin < source.end && source.end <= data.size());
  if (description.empty()) return;
  fuzz::require(description.ends_with(u"\r\nM5 M6" + data + u"M7"));
  std::u16string found;
  const std::u16string again = joined(display.explainStored(record, description, found));
  fuzz::require(again.empty() || again == description);
}

}  // namespace
}  // namespace vordane::faults

namespace {

using vordane::FaultTextTable;
using Make = FaultTextTable (*)(int);

// One table for each value of a byte, made when it is first asked for.
template <Make make>
const FaultTextTable& tableWithout(std::uint8_t missing) {
  static std::unique_ptr<FaultTextTable> tables[256];
  if (!tables[missing]) tables[missing] = std::make_unique<FaultTextTable>(make(missing));
  return *tables[missing];
}

}  // namespace

// The first two bytes choose a missing message and a missing list; the rest is a line of three fields.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace vordane;
  if (size < 2) return 0;
  const FaultTextTable& noMessage = tableWithout<faults::textsWithoutMessage>(bytes[0]);
  const FaultTextTable& noList = tableWithout<faults::textsWithoutList>(bytes[1]);
  const std::u16string line = text::fromUtf8({reinterpret_cast<const char*>(bytes) + 2, size - 2});
  const auto fields = text::split(line, u'\t');
  const auto field = [&](std::size_t n) { return n < fields.size() ? fields[n] : std::u16string{}; };
  for (const bool wide : {true, false}) {
    faults::check(noMessage, wide, field(0), field(1), field(2));
    faults::check(noList, wide, field(0), field(1), field(2));
  }
  return 0;
}

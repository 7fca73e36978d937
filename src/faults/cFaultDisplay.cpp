#include "faults/cFaultDisplay.h"

#include <utility>

#include "faults/composer.h"
#include "faults/data_text.h"
#include "faults/family_decoders.h"
#include "faults/kind_table.h"
#include "faults/own_decoders.h"
#include "faults/sinks.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane {
namespace {

using namespace faults;

template <class C>
void composeDetail(C& c) {
  switch (c.kind().family) {
    case Family::titleOnly:
      return;
    case Family::oneCode:
      return OneCode(c);
    case Family::labelledOneCode:
      return LabelledOneCode(c);
    case Family::oneValue:
      return BracketedNumber(c, c.number(0), 1);
    case Family::maskedValue:
      return MaskedValue(c);
    case Family::onePaddedValue:
      return BracketedNumber(c, c.number(0), 2);
    case Family::date:
      return Date(c);
    case Family::rawValue:
      return RawValue(c);
    case Family::decimalPair:
      return DecimalPair(c);
    case Family::paddedNumber:
      return PaddedNumber(c);
    case Family::codeAndItsNumber:
      return CodeAndItsNumber(c);
    case Family::numberThenCode:
      return NumberThenCode(c);
    case Family::typeAndNumber:
      return TypeAndNumber(c);
    case Family::groupAndItem:
      return GroupAndItem(c);
    case Family::codedDigits:
      return CodedDigits(c);
    case Family::flaggedDigits:
      return FlaggedDigits(c);
    case Family::kind04:
      return DecodeKind04(c);
    case Family::kind05:
      return DecodeKind05(c);
    case Family::kind13:
      return DecodeKind13(c);
    case Family::kind14:
      return DecodeKind14(c);
    case Family::kind15:
      return DecodeKind15(c);
    case Family::kind17:
      return DecodeKind17(c);
    case Family::kind3B:
      return DecodeKind3B(c);
    case Family::kind48:
      return DecodeKind48(c);
    case Family::kind49:
      return DecodeKind49(c);
  }
}

const FaultKind& kindOf(std::u16string_view record) {
  return kindIndex[text::hexField(text::left(record, 2))];
}

// Title line, detail lines, and the raw data under its heading.
template <class Sink>
void compose(const FaultTextTable& texts, bool wideFields, const FaultKind& kind, const DataText& data,
             Sink sink) {
  Composer<Sink> composer(texts, wideFields, kind, data, sink);
  composer.line(kind.title);
  composeDetail(composer);
  composer.trailer();
}

std::u16string joined(const cFaultDisplay::Pieces& pieces) {
  std::u16string text;
  for (const cFaultDisplay::Piece& piece : pieces) text += piece.text;
  return text;
}

}  // namespace

cFaultDisplay::cFaultDisplay(const FaultTextTable& texts, const bool& wideFaultFields)
    : texts_(texts), wideFaultFields_(wideFaultFields) {}

std::u16string cFaultDisplay::GetFaultMessage(std::u16string_view record, std::u16string_view firstData,
                                              std::u16string_view secondData) const {
  std::u16string result;
  GetFaultMessage(record, firstData, secondData, result);
  return result;
}

void cFaultDisplay::GetFaultMessage(std::u16string_view record, std::u16string_view firstData,
                                    std::u16string_view secondData, std::u16string& result) const {
  PlainSink sink(result);
  compose(texts_, wideFaultFields_, kindOf(record), DataText(firstData, secondData), sink);
}

cFaultDisplay::Pieces cFaultDisplay::explainWith(std::u16string_view record, std::u16string_view first,
                                                 std::u16string_view second, bool wide) const {
  Pieces pieces;
  const DataText data(first, second);
  ExplainingSink sink(pieces, data);
  compose(texts_, wide, kindOf(record), data, sink);
  return pieces;
}

cFaultDisplay::Pieces cFaultDisplay::explain(std::u16string_view record, std::u16string_view firstData,
                                             std::u16string_view secondData) const {
  return explainWith(record, firstData, secondData, wideFaultFields_);
}

// The data stands between the last opening bracket under the heading and the closing bracket at the end.
std::optional<cFaultDisplay::Origin> cFaultDisplay::originOf(std::u16string_view kind,
                                                             std::u16string_view description) const {
  const std::u16string *heading = texts_.message(rawDataHeading), *open = texts_.message(openBracket),
                       *close = texts_.message(closeBracket);
  if (heading == nullptr || open == nullptr || close == nullptr || !description.ends_with(*close)) return {};
  const std::u16string before = std::u16string(text::crlf) + *heading + u" " + *open;
  const auto place = description.rfind(before);
  if (place == std::u16string_view::npos) return {};
  const std::u16string_view data = description.substr(place + before.size());
  if (data.size() < close->size()) return {};
  const std::u16string_view bytes = data.substr(0, data.size() - close->size());
  const auto blank = bytes.find(u' ');  // the two data texts were joined by one, so there is one
  if (blank == std::u16string_view::npos) return {};
  for (const bool wide : {wideFaultFields_, !wideFaultFields_}) {
    Pieces pieces = explainWith(kind, bytes.substr(0, blank), bytes.substr(blank + 1), wide);
    if (joined(pieces) == description) return Origin{bytes, wide, std::move(pieces)};
  }
  return {};
}

cFaultDisplay::Pieces cFaultDisplay::explainStored(std::u16string_view kind, std::u16string_view description,
                                                   std::u16string& dataText) const {
  dataText.clear();
  auto origin = originOf(kind, description);
  if (!origin) return {};
  dataText = origin->data;
  return std::move(origin->pieces);
}

cFaultDisplay::Pieces cFaultDisplay::translateStored(std::u16string_view kind,
                                                     std::u16string_view description,
                                                     const FaultTextTable& other) const {
  const auto origin = originOf(kind, description);
  if (!origin) return {};
  const auto blank = origin->data.find(u' ');
  const cFaultDisplay decoder(other, origin->wide);
  return decoder.explain(kind, origin->data.substr(0, blank), origin->data.substr(blank + 1));
}

}  // namespace vordane

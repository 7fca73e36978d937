// Turns one fault record of the exchange into the text that is stored and shown.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vordane {

// The texts the decoders read; owned by the caller, must outlive the decoder.
class FaultTexts {
 public:
  virtual ~FaultTexts() = default;
  virtual std::span<const std::u16string> messages() const = 0;
  // The items of list "cboFKxx" (`kind` is xx read as hexadecimal), nothing when the window lacks it.
  virtual const std::vector<std::u16string>* list(int kind) const = 0;
};

class cFaultDisplay {
 public:
  // `wideFaultFields` is read at each call.
  cFaultDisplay(const FaultTexts& texts, const bool& wideFaultFields);

  // Never throws; the empty text when a text this record shows is missing.
  std::u16string GetFaultMessage(std::u16string_view record, std::u16string_view firstData,
                                 std::u16string_view secondData) const;

  // The same decoding with the proof: each piece of the result and the characters of the data text
  // ([begin, end), from 0) that it came from.
  struct Piece {
    std::u16string text;
    std::vector<std::pair<std::size_t, std::size_t>> sources;
  };
  std::vector<Piece> Explain(std::u16string_view record, std::u16string_view firstData,
                             std::u16string_view secondData) const;

 private:
  const FaultTexts& texts_;
  const bool& wideFaultFields_;
};

}  // namespace vordane

// Turns one fault record of the exchange into the text that is stored and shown.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "faults/fault_texts.h"

namespace vordane {

// Keeps nothing between calls. Any thread may use it while texts and flag stay unchanged.
class cFaultDisplay {
 public:
  // Both are read at each call and must outlive the decoder.
  cFaultDisplay(const FaultTextTable& texts, const bool& wideFaultFields);

  // The description, lines ended by CRLF. `record` begins with the kind as two hexadecimal digits; both
  // data texts are hexadecimal bytes separated by single blanks. Never fails on any input; the empty text
  // when a text that this record shows is missing.
  std::u16string GetFaultMessage(std::u16string_view record, std::u16string_view firstData,
                                 std::u16string_view secondData) const;

  // The same into `result`, whose memory is used again: a loop over records allocates nothing.
  void GetFaultMessage(std::u16string_view record, std::u16string_view firstData,
                       std::u16string_view secondData, std::u16string& result) const;

  // Characters of the data text (first data, a blank, second data), [begin, end) from 0.
  struct Source {
    std::size_t begin, end;
    bool operator==(const Source&) const = default;
  };
  // A part of the description. Labels and separators have no source; a value has the characters it was
  // read from, and its text may be empty when they stand for none.
  struct Piece {
    std::u16string text;
    std::vector<Source> sources;
  };
  using Pieces = std::vector<Piece>;

  // The same decoding with its proof: the texts of the pieces, joined, are the description. No pieces
  // where the description is empty.
  Pieces explain(std::u16string_view record, std::u16string_view firstData,
                 std::u16string_view secondData) const;

  // The pieces of a stored fault, decoded again from its kind and the data in its trailer. Nothing unless
  // exactly the stored description comes out (with either width of the fields): texts may have changed
  // since it was stored. `dataText` receives the data text that the sources count in.
  Pieces explainStored(std::u16string_view kind, std::u16string_view description,
                       std::u16string& dataText) const;

  // A stored fault in the words of `other`: the pieces of what its kind and data give there. Nothing unless
  // exactly the stored description comes out of the words of this decoder, and where `other` lacks a text.
  Pieces translateStored(std::u16string_view kind, std::u16string_view description,
                         const FaultTextTable& other) const;

 private:
  // What a stored description was decoded from.
  struct Origin {
    std::u16string_view data;
    bool wide;
    Pieces pieces;
  };
  std::optional<Origin> originOf(std::u16string_view kind, std::u16string_view description) const;
  Pieces explainWith(std::u16string_view record, std::u16string_view first, std::u16string_view second,
                     bool wide) const;

  const FaultTextTable& texts_;
  const bool& wideFaultFields_;
};

}  // namespace vordane

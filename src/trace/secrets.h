// The log-in identifiers that a trace leaves out. A number stands in the place of each, so that what belongs
// together can still be seen. One thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::trace {

class Secrets {
 public:
  // Whatever is kept is shown.
  explicit Secrets(bool shown) : shown_(shown) {}

  // From here on `identifier` is hidden; an empty one, and an exchange server's BUSY and ERROR, are none.
  void keep(std::u16string_view identifier);

  // `text`, or in `place` the text with each identifier in it replaced: wherever it stands as a word, and one
  // of four characters or more wherever it stands.
  std::u16string_view hidden(std::u16string_view text, std::u16string& place) const;

  static constexpr std::size_t most = 32;  // older ones are forgotten

 private:
  struct Kept {
    std::u16string identifier;
    std::size_t number;
  };
  bool shown_;
  std::vector<Kept> kept_;  // the longest first: one may be a part of another
  std::size_t count_ = 0;
};

}  // namespace vordane::trace

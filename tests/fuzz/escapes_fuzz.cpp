// Any stored text and any substitution text: expanding ends, keeps within what its parts can give, and
// leaves the substitution alone where nothing asks for it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "check.h"
#include "language/comLanguage.h"
#include "text/utf8.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace vordane;
  const std::u16string both = text::fromUtf8({reinterpret_cast<const char*>(bytes), size});
  const std::size_t cut = both.find(u'\t');
  const std::u16string stored = both.substr(0, cut);
  const std::u16string given = cut == std::u16string::npos ? std::u16string{} : both.substr(cut + 1);
  std::u16string rest = given;
  const std::u16string expanded = comLanguage::ExpandEscapes(stored, rest);
  fuzz::require(rest.size() <= given.size());
  if (stored.find(u"%ST") == std::u16string::npos) {
    fuzz::require(rest == given);
    fuzz::require(expanded.size() <= stored.size());  // no other token is longer than its notation
  }
  std::u16string again = given;
  fuzz::require(comLanguage::ExpandEscapes(stored, again) == expanded && again == rest);
  return 0;
}

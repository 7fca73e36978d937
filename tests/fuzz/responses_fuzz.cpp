// Any answer of the exchange has one of the known codes, always the same one.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "check.h"
#include "pbx/response_codes.h"
#include "text/utf8.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace vordane;
  const std::u16string text = text::fromUtf8({reinterpret_cast<const char*>(bytes), size});
  const int code = pbx::GetResponseCode(text);
  fuzz::require(code >= -1 && code <= 106);
  fuzz::require(pbx::GetResponseCode(text) == code);
  // Of a long answer only the last 25 characters count.
  if (text.size() > 25)
    fuzz::require(pbx::GetResponseCode(std::u16string_view(text).substr(text.size() - 25)) == code);
  return 0;
}

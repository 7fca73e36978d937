// With VORDANE_TRACED every story of this program is traced, into the folder that it names. What hosts,
// exchanges and people see of a story must be the same then, so the same tests hold both.
#include "trace/traced_stories.h"

#include <cstdlib>

#include "text/utf8.h"

namespace vordane::trace {
namespace {

const bool traced = [] {
  const char* const folder = std::getenv("VORDANE_TRACED");
  if (folder == nullptr) return false;
  startup::makeBetween() = [path = text::fromUtf8(folder)](const startup::Workstation& plain) {
    Wish wish;
    wish.limits = {10'000'000'000, 3650, 0};
    return std::make_unique<TracedBetween>(plain, record(diskFolder(path), wish, systemMoment, 1 << 20));
  };
  return true;
}();

}  // namespace
}  // namespace vordane::trace

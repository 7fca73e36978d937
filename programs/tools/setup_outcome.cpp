#include "setup_outcome.h"

#include "language_source.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

Outcome outcomeOf(const std::error_code& failure) {
  if (failure == std::errc::no_space_on_device) return Outcome::diskFull;
  if (failure == std::errc::permission_denied || failure == std::errc::operation_not_permitted ||
      failure == std::errc::read_only_file_system)
    return Outcome::noRights;
  if (failure == std::errc::invalid_argument || failure == std::errc::filename_too_long ||
      failure == std::errc::not_a_directory || failure == std::errc::no_such_device ||
      failure == std::errc::no_such_file_or_directory)
    return Outcome::badPlace;
  return Outcome::failed;
}

}  // namespace

std::string pathText(const std::filesystem::path& path) {
  return text::toUtf8(toText(path));
}

void failAt(const std::filesystem::path& path, const std::error_code& failure) {
  throw SetupFailure(outcomeOf(failure), pathText(path) + ": " + failure.message());
}

void failAt(const std::filesystem::filesystem_error& failure) {
  failAt(failure.path2().empty() ? failure.path1() : failure.path2(), failure.code());
}

}  // namespace vordane::tools

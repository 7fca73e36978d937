#include "platform/whole_file.h"

#include <string>
#include <system_error>

namespace vordane::platform {
namespace {

constexpr int mostNames = 100;

}  // namespace

WholeFile::~WholeFile() {
  if (pending_.empty()) return;
  out_.close();
  std::error_code ignored;
  std::filesystem::remove(pending_, ignored);
}

// A name that nobody has: another window may be saving the same file.
bool WholeFile::choosePending() {
  for (int number = 0; number < mostNames; ++number) {
    std::filesystem::path name = target_;
    name += number == 0 ? ".part" : ".part" + std::to_string(number);
    std::error_code failure;
    if (std::filesystem::exists(name, failure)) continue;
    if (!failure) pending_ = std::move(name);
    return !failure;
  }
  return false;
}

bool WholeFile::begin() {
  if (!choosePending()) return false;
  out_.open(pending_, std::ios::binary | std::ios::trunc);
  if (out_) return true;
  pending_.clear();
  return false;
}

bool WholeFile::write(std::string_view bytes) {
  out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return out_.good();
}

bool WholeFile::end() {
  out_.close();
  return out_.good();
}

bool WholeFile::takeName() {
  std::error_code failure;
  std::filesystem::rename(pending_, target_, failure);
  if (failure) return false;
  pending_.clear();
  return true;
}

}  // namespace vordane::platform

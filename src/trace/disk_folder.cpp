#include <filesystem>
#include <fstream>
#include <system_error>

#include "trace/folder.h"

namespace vordane::trace {
namespace {

namespace fs = std::filesystem;

// Keeps the file that it wrote last open, since every piece of a trace goes into the same one.
class DiskFolder final : public Folder {
 public:
  explicit DiskFolder(fs::path path) : path_(std::move(path)) {}

  std::vector<StoredFile> files() override {
    std::vector<StoredFile> found;
    std::error_code failed;
    for (fs::directory_iterator at(path_, failed), end; !failed && at != end; at.increment(failed)) {
      std::error_code unknown;
      if (!at->is_regular_file(unknown) || unknown) continue;
      const auto bytes = at->file_size(unknown);
      if (!unknown) found.push_back({nameOf(at->path()), bytes});
    }
    return found;
  }

  bool append(const std::string& name, std::string_view bytes) override {
    if (name != name_ && !open(name)) return false;
    out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out_.flush();
    if (out_.good()) {
      written_ += bytes.size();
      return true;
    }
    takeBack();
    return false;
  }

  bool remove(const std::string& name) override {
    std::error_code failed;
    fs::remove(path_ / name, failed);
    return !failed;
  }

  std::uint64_t room() override {
    std::error_code failed;
    fs::path place = path_;
    // A folder that is yet to be made lies on the disk of the one above it.
    while (!fs::exists(place, failed) && place.has_parent_path() && place.parent_path() != place)
      place = place.parent_path();
    const fs::space_info space = fs::space(place, failed);
    return failed ? 0 : space.available;
  }

 private:
  // No name of a trace holds anything but ASCII; others are nobody's business here.
  static std::string nameOf(const fs::path& path) {
    std::string name;
    for (const char16_t unit : path.filename().u16string())
      name += unit < 0x80 ? static_cast<char>(unit) : '?';
    return name;
  }

  bool open(const std::string& name) {
    close();
    std::error_code failed;
    fs::create_directories(path_, failed);
    isNew_ = !fs::exists(path_ / name, failed);
    out_.open(path_ / name, std::ios::binary | std::ios::app);
    if (!out_.is_open()) return false;
    name_ = name;
    written_ = isNew_ ? 0 : fs::file_size(path_ / name, failed);
    return true;
  }

  // Half a line would spoil the one behind it.
  void takeBack() {
    const fs::path file = path_ / name_;
    close();
    std::error_code ignored;
    if (written_ == 0 && isNew_)
      fs::remove(file, ignored);
    else
      fs::resize_file(file, written_, ignored);
  }

  void close() {
    if (out_.is_open()) out_.close();
    out_.clear();
    name_.clear();
  }

  fs::path path_;
  std::ofstream out_;
  std::string name_;
  std::uint64_t written_ = 0;
  bool isNew_ = false;
};

}  // namespace

std::unique_ptr<Folder> diskFolder(std::u16string_view path) {
  return std::make_unique<DiskFolder>(fs::path(std::u16string(path)));
}

}  // namespace vordane::trace

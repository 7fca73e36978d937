#include "zulsim/core/files.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace vordane::files {

std::optional<std::string> readFile(const std::u16string& path) {
  std::ifstream in(std::filesystem::path(path), std::ios::binary);
  if (!in) return std::nullopt;
  std::string bytes(std::istreambuf_iterator<char>(in), {});
  if (in.bad()) return std::nullopt;
  return bytes;
}

bool writeFile(const std::u16string& path, std::string_view bytes) {
  std::ofstream out(std::filesystem::path(path), std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  return !out.fail();
}

std::u16string besideFile(const std::u16string& file, const std::u16string& directory,
                          const std::u16string& name) {
  const std::filesystem::path place =
      directory.empty() ? std::filesystem::path(file).parent_path() : std::filesystem::path(directory);
  return (place / std::filesystem::path(name)).u16string();
}

bool takeWord(const std::u16string& folder, std::u16string_view word) {
  std::error_code failure;  // one that can't be removed yet is taken at the next look
  return std::filesystem::remove(std::filesystem::path(folder) / std::filesystem::path(word), failure);
}

void giveWord(const std::u16string& folder, std::u16string_view word) {
  writeFile((std::filesystem::path(folder) / std::filesystem::path(word)).u16string(), {});
}

}  // namespace vordane::files

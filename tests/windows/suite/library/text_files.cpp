#include "library/text_files.h"

#include <windows.h>

#include <fstream>
#include <iterator>

#include "click/windows/eye.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace fs = std::filesystem;

std::string readText(const Path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw Failure(utf8(file) + " can't be read");
  return {std::istreambuf_iterator<char>(in), {}};
}

void writeText(const Path& file, std::string_view text) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  out.close();
  if (out.fail()) throw Failure(utf8(file) + " can't be written");
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.emplace_back(line);
    text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
  }
  return lines;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

std::string utf8(std::wstring_view text) {
  return click::utf8(text);
}

std::string utf8(const std::wstring& text) {
  return utf8(std::wstring_view(text));
}

std::string utf8(const Path& path) {
  return utf8(std::wstring_view(path.native()));
}

std::wstring wide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  std::wstring units(
      static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, units.data(), static_cast<int>(units.size()));
  return units;
}

void emptyFolder(const Path& folder) {
  fs::create_directories(folder);
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_directory()) emptyFolder(entry.path());
    std::error_code mounted;
    fs::remove(entry.path(), mounted);
    if (mounted && !entry.is_directory()) throw Failure(utf8(entry.path()) + " can't be removed");
  }
}

namespace {

constexpr const wchar_t* takenMark = L"made by the tests";

bool holdsFiles(const Path& folder) {
  if (!fs::exists(folder)) return false;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (!entry.is_directory()) return true;
  return false;
}

}  // namespace

bool isTaken(const Path& folder) {
  return fs::exists(folder / takenMark);
}

void takeFolder(const Path& folder) {
  if (!isTaken(folder) && holdsFiles(folder))
    throw Failure(utf8(folder) + " holds files that no test has made: name another folder for the tests");
  emptyFolder(folder);
  writeText(folder / takenMark, {});
}

void leaveFolder(const Path& folder) {
  if (!isTaken(folder)) return;
  emptyFolder(folder);
  std::error_code mounted;
  fs::remove(folder, mounted);
}

void copyFolder(const Path& from, const Path& to) {
  fs::create_directories(to);
  for (const auto& entry : fs::directory_iterator(from)) {
    const Path target = to / entry.path().filename();
    entry.is_directory() ? copyFolder(entry.path(), target) : copyFile(entry.path(), target);
  }
}

void copyFile(const Path& from, const Path& to) {
  const Path target = fs::is_directory(to) ? to / from.filename() : to;
  if (!CopyFileW(from.c_str(), target.c_str(), FALSE))
    throw Failure(utf8(from) + " can't be copied to " + utf8(target) + ": error " +
                  std::to_string(GetLastError()));
}

}  // namespace vordane::suite

#include "trace/trace_files.h"

#include <algorithm>
#include <exception>
#include <vector>

namespace vordane::trace {
namespace {

// The digit stands for a digit of either kind.
constexpr std::string_view form = "trace-00000000-000000-xxxxxxxx-0000.jsonl", prefix = "trace-";

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

std::string fourDigits(int number) {
  std::string text = std::to_string(number % 10000);
  return std::string(4 - text.size(), '0') + text;
}

std::string leftOutLine(std::size_t count, Moment now) {
  std::string line = R"({"at":")";
  appendMoment(now, line);
  line += R"(","event":"left out","why":"no room","count":)";
  appendNumber(static_cast<std::int64_t>(count), line);
  return line + "}\n";
}

}  // namespace

bool TraceFiles::isOne(std::string_view name) {
  const auto fits = [](char character, char pattern) {
    if (pattern == '0') return isDigit(character);
    if (pattern == 'x') return isDigit(character) || (character >= 'a' && character <= 'f');
    return character == pattern;
  };
  return name.size() == form.size() && std::equal(name.begin(), name.end(), form.begin(), fits);
}

void TraceFiles::write(std::string_view lines, std::size_t count, Moment now) noexcept {
  try {
    if (append(lines, now)) {
      leftOut_ = 0;
      return;
    }
  } catch (const std::exception&) {
    // Without memory it is as without room.
  }
  name_.clear();
  leftOut_ += count;
}

bool TraceFiles::append(std::string_view lines, Moment now) {
  if (folder_->room() < limits_.room) return false;
  std::string whole;
  if (leftOut_ > 0) {
    whole = leftOutLine(leftOut_, now);
    whole += lines;
    lines = whole;
  }
  if (name_.empty() || written_ + lines.size() > limits_.bytes / partsOfLimit || now - begun_ > longestPart)
    beginPart(now);
  if (!folder_->append(name_, lines)) return false;
  written_ += lines.size();
  return true;
}

void TraceFiles::beginPart(Moment now) {
  name_ = std::string(prefix) + stampOf(now) + "-" + mark_ + "-" + fourDigits(++part_) + ".jsonl";
  written_ = 0;
  begun_ = now;
  removeOld(now);
}

// The part that begins is counted as long as it may become.
void TraceFiles::removeOld(Moment now) {
  std::vector<StoredFile> files = folder_->files();
  std::erase_if(files, [&](const StoredFile& file) { return !isOne(file.name) || file.name == name_; });
  std::sort(files.begin(), files.end(),
            [](const StoredFile& a, const StoredFile& b) { return a.name < b.name; });
  std::uint64_t all = limits_.bytes / partsOfLimit;
  for (const StoredFile& file : files) all += file.bytes;
  const std::string oldest = std::string(prefix) + stampOf(now - limits_.days * Moment{86'400'000'000});
  for (const StoredFile& file : files) {
    if (all <= limits_.bytes && file.name >= oldest) break;
    if (folder_->remove(file.name)) all -= file.bytes;  // one that another process writes may stay
  }
}

}  // namespace vordane::trace

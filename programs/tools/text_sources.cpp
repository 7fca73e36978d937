#include "text_sources.h"

#include <cstdio>
#include <iostream>
#include <map>
#include <string_view>

#include "console.h"
#include "lines.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

constexpr int highestNumber = 32767;  // the message array is counted with 16 bits, and so are list items

[[noreturn]] void complain(const std::string& path, const FileLines& lines, const std::string& what) {
  throw ToolError(path + ":" + std::to_string(lines.number()) + ": " + what);
}

int number(std::string_view field, const std::string& path, const FileLines& lines) {
  const auto value = text::parseInteger(text::fromUtf8(field));
  if (!value || *value < 0 || *value > highestNumber)
    complain(path, lines, std::string(field) + " is no number from 0 to 32767");
  return *value;
}

// Calls `take(line, reader)` for every line that holds anything; a byte order mark is no part of the first.
template <class Take>
void forEachLine(const std::string& path, Take take) {
  const File file = openForReading(path);
  if (!file) throw ToolError(path + ": can't be opened. Check the path and the rights of the file");
  FileLines lines(file.get());
  while (const auto line = lines.next()) {
    std::string_view text = *line;
    if (lines.number() == 1 && text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    if (!text.empty() && text.front() != '#') take(text, lines);
  }
}

}  // namespace

void readMessages(const std::string& path, FaultTextTable& texts) {
  forEachLine(path, [&](std::string_view line, const FileLines& lines) {
    const int id = number(takeField(line), path, lines);
    if (texts.message(id) != nullptr)
      complain(path, lines, "message " + std::to_string(id) + " stands twice");
    texts.setMessage(id, text::fromUtf8(line));
  });
}

void readLists(const std::string& path, FaultTextTable& texts) {
  std::map<int, std::map<int, std::u16string>> lists;
  forEachLine(path, [&](std::string_view line, const FileLines& lines) {
    const std::string_view name = takeField(line);
    const int index = number(takeField(line), path, lines);
    const auto kind = listKind(text::fromUtf8(name));
    if (!kind) {
      std::cerr << path << ':' << lines.number() << ": \"" << name
                << "\" is no list of the decoders; ignored\n";
    } else if (!lists[*kind].emplace(index, text::fromUtf8(line)).second) {
      complain(path, lines, "item " + std::to_string(index) + " of " + std::string(name) + " stands twice");
    }
  });
  for (auto& [kind, items] : lists) {
    // An item that no line gives has no text, like one behind the list's end.
    std::vector<std::u16string> list(static_cast<std::size_t>(items.rbegin()->first) + 1);
    for (auto& [index, item] : items) list[static_cast<std::size_t>(index)] = std::move(item);
    texts.setList(kind, std::move(list));
  }
}

}  // namespace vordane::tools

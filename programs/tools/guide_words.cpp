#include "guide_words.h"

#include <algorithm>
#include <fstream>

#include "language/message_numbers.h"
#include "text/utf8.h"

namespace vordane::tools {

GuideWords::GuideWords(const std::filesystem::path& file, const std::string& name, Problems& problems) {
  std::ifstream in(file, std::ios::binary);
  if (!in) problems.push_back(name + ": the file is missing");
  const auto unused = [&](const std::string& word) {
    return name + ": nothing uses the word \"" + word + '"';
  };
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line.front() == '#') continue;
    const std::size_t tab = std::min(line.find('\t'), line.size());
    const std::string word = line.substr(0, tab);
    if (std::find(wordNames.begin(), wordNames.end(), word) == wordNames.end())
      problems.push_back(unused(word));
    texts_[word] = line.substr(std::min(tab + 1, line.size()));
  }
  for (const std::string_view word : wordNames)
    if (in.is_open() && texts_[std::string(word)].empty())
      problems.push_back(name + ": the word \"" + std::string(word) + "\" is missing");
}

std::string GuideWords::operator()(Word word, std::string_view first, std::string_view second) const {
  const auto found = texts_.find(wordNames[static_cast<std::size_t>(word)]);
  if (found == texts_.end()) return {};
  return text::toUtf8(
      fillText(text::fromUtf8(found->second), {text::fromUtf8(first), text::fromUtf8(second)}));
}

}  // namespace vordane::tools

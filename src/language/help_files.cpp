#include "language/help_files.h"

#include <algorithm>
#include <array>
#include <vector>

#include "text/text.h"

namespace vordane::language {
namespace {

constexpr std::array<std::u16string_view, 6> documentTypes{u"HLP", u"CHM", u"HTM", u"HTML", u"TXT", u"PDF"};

using Names = std::vector<std::u16string>;

bool hasDrive(std::u16string_view path) {
  return path.size() >= 3 && path[1] == u':' && (path[2] == u'\\' || path[2] == u'/');
}

// A name that means the file it says: no stream behind a colon, no sign that file names can't hold, and no
// blank or dot at the end, which the system drops before it looks.
bool isPlain(std::u16string_view name) {
  constexpr std::u16string_view forbidden = u":*?\"<>|";
  const bool readable = std::none_of(name.begin(), name.end(), [&](char16_t character) {
    return character < u' ' || forbidden.find(character) != forbidden.npos;
  });
  return readable && name.back() != u' ' && name.back() != u'.';
}

// How long the part is that no ".." leaves: "C:", or server and share; 0 for a path that begins otherwise.
std::size_t rootLength(std::u16string_view path) {
  if (hasDrive(path)) return 2;
  if (!path.starts_with(u"\\\\")) return 0;
  const auto share = path.find(u'\\', 2);
  if (share == path.npos || share == 2 || !isPlain(path.substr(2, share - 2))) return 0;
  const auto end = path.find(u'\\', share + 1);
  if (end == path.npos || end == share + 1 || !isPlain(path.substr(share + 1, end - share - 1))) return 0;
  return end;
}

// The root first, then each name, without "." and ".."; nothing for a path that is not understood to the end.
std::optional<Names> namesOf(std::u16string path) {
  std::replace(path.begin(), path.end(), u'/', u'\\');
  const std::size_t root = rootLength(path);
  if (root == 0) return std::nullopt;
  Names names{path.substr(0, root)};
  for (const std::u16string& name : text::split(path.substr(root + 1), u'\\')) {
    if (name.empty() || name == u".") continue;
    if (name == u"..") {
      if (names.size() == 1) return std::nullopt;
      names.pop_back();
    } else if (isPlain(name)) {
      names.push_back(name);
    } else {
      return std::nullopt;
    }
  }
  return names;
}

bool liesIn(const Names& file, const Names& directory) {
  return file.size() > directory.size() &&
         std::equal(directory.begin(), directory.end(), file.begin(), [](const auto& a, const auto& b) {
           return text::toUpperPath(a) == text::toUpperPath(b);
         });
}

bool isDocument(std::u16string_view name) {
  const auto dot = name.rfind(u'.');
  if (dot == name.npos) return false;
  const std::u16string type = text::toUpper(name.substr(dot + 1));
  return std::find(documentTypes.begin(), documentTypes.end(), type) != documentTypes.end();
}

}  // namespace

std::optional<std::u16string> openableHelp(std::u16string_view helpFile, std::u16string_view programDirectory,
                                           std::u16string_view suiteDirectory) {
  const std::u16string given(helpFile);
  const auto file = namesOf(hasDrive(given) ? given : std::u16string(programDirectory) + u"\\" + given);
  const auto suite = namesOf(std::u16string(suiteDirectory) + u"\\");
  if (!file || !suite || !liesIn(*file, *suite) || !isDocument(file->back())) return std::nullopt;
  std::u16string path = file->front();
  for (std::size_t i = 1; i < file->size(); ++i) path += u"\\" + (*file)[i];
  return path;
}

}  // namespace vordane::language

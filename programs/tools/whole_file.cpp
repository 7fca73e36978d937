#include "whole_file.h"

#include <fstream>
#include <iterator>

#include "language_source.h"
#include "text/utf8.h"

namespace vordane::tools {

std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in)
    throw ToolError(text::toUtf8(toText(path)) +
                    ": can't be read. Check the path and the rights of the file");
  return {std::istreambuf_iterator<char>(in), {}};
}

void writeFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
  out.close();
  if (!out)
    throw UnwritableFile(text::toUtf8(toText(path)) +
                         ": can't be written. Check the rights of its folder and the room on its disk");
}

}  // namespace vordane::tools

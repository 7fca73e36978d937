// Small files as texts and lines. UTF-8; a missing file throws Failure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "library/layout.h"

namespace vordane::suite {

std::string readText(const Path& file);
void writeText(const Path& file, std::string_view text);
// Without line ends; a last line without one counts too.
std::vector<std::string> linesOf(std::string_view text);
std::string joined(const std::vector<std::string>& lines);  // each with a line feed

std::string utf8(std::wstring_view text);
std::string utf8(const std::wstring& text);
std::string utf8(const Path& path);
std::wstring wide(std::string_view utf8);

// Empties the folder, which is made when it is not there; one that a disk is mounted at stays.
void emptyFolder(const Path& folder);
void copyFolder(const Path& from, const Path& to);  // over what is there
void copyFile(const Path& from, const Path& to);    // likewise; `to` may be a folder

}  // namespace vordane::suite

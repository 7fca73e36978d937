// The system's dialog that asks under which name to save.
#pragma once

#include <windows.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vordane::window::win32 {

struct FileQuestion {
  struct Kind {
    std::u16string words, extension;  // the extension without its dot
  };
  std::u16string title, name;  // the name that it offers, without extension
  std::vector<Kind> kinds;     // the first is the one offered
};
struct FileAnswer {
  std::filesystem::path file;  // with an extension of one of the kinds
  std::size_t kind;
};
// Serves messages meanwhile, `owner` takes no input; whoever asks looks afterwards what has become of it.
// Nothing when the person gives it up. A name that exists has been asked about.
std::optional<FileAnswer> askForFile(HWND owner, const FileQuestion& question);

}  // namespace vordane::window::win32

#include "platform/windows/window/file_question.h"

#include <commdlg.h>

#include "platform/windows/com/system_function.h"
#include "platform/windows/window/handles.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

constexpr DWORD longestPath = 32'767;

// A text for each kind and its pattern, each with its end, and an end behind all.
std::u16string filtersOf(const FileQuestion& question) {
  std::u16string filters;
  for (const FileQuestion::Kind& kind : question.kinds) {
    (filters += kind.words) += u'\0';
    ((filters += u"*.") += kind.extension) += u'\0';
  }
  return filters += u'\0';
}

// The name decides; one without an extension that is known gets that of the kind chosen in the list.
FileAnswer answerOf(const FileQuestion& question, std::filesystem::path file, std::size_t chosen) {
  const std::u16string extension = file.extension().u16string();
  for (std::size_t kind = 0; kind < question.kinds.size(); ++kind)
    if (text::equalIgnoringCase(extension, u"." + question.kinds[kind].extension))
      return {std::move(file), kind};
  const std::size_t kind = chosen >= 1 && chosen <= question.kinds.size() ? chosen - 1 : 0;
  file += u"." + question.kinds[kind].extension;
  return {std::move(file), kind};
}

}  // namespace

std::optional<FileAnswer> askForFile(HWND owner, const FileQuestion& question) {
  using Ask = BOOL(WINAPI*)(OPENFILENAMEW*);
  static const auto ask = com::systemFunction<Ask>(L"comdlg32.dll", "GetSaveFileNameW");
  if (ask == nullptr || question.kinds.empty()) return {};
  const std::u16string filters = filtersOf(question);
  std::u16string file = question.name;
  file.resize(longestPath + 1);
  OPENFILENAMEW asked{};
  asked.lStructSize = sizeof asked;
  asked.hwndOwner = owner;
  asked.lpstrFilter = wide(filters);
  asked.nFilterIndex = 1;
  asked.lpstrFile = reinterpret_cast<wchar_t*>(file.data());
  asked.nMaxFile = longestPath;
  asked.lpstrTitle = wide(question.title);
  asked.lpstrDefExt = wide(question.kinds.front().extension);
  asked.Flags = OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                OFN_NOTESTFILECREATE | OFN_ENABLESIZING;
  if (!ask(&asked)) return {};
  return answerOf(question, std::filesystem::path(file.c_str()), asked.nFilterIndex);
}

}  // namespace vordane::window::win32

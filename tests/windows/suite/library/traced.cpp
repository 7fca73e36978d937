#include "library/traced.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <iostream>

#include "library/text_files.h"
#include "library/waiting.h"
#include "platform/windows/com/owned.h"

namespace vordane::suite {
namespace {

const wchar_t* const traceKey = L"Software\\VB and VBA Program Settings\\VORDANE\\Trace";

Path programFolder() {
  return layout().elsewhere / L"PROGRAMS";
}

}  // namespace

Path traceFolder() {
  return layout().elsewhere / L"TRACE";
}

void keepTraces() {
  std::filesystem::create_directories(programFolder());
  for (const Path& program : {layout().addin(), layout().host(), layout().simulator()})
    copyFile(program, programFolder());
  com::RegistryKey key;
  RegCreateKeyExW(HKEY_CURRENT_USER, traceKey, 0, nullptr, 0, KEY_WRITE, nullptr, key.put(), nullptr);
  const auto set = [&](const wchar_t* name, const std::wstring& value) {
    RegSetValueExW(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  };
  set(L"On", L"1");
  set(L"Folder", traceFolder().wstring());
}

std::wstring traceSetting(const wchar_t* name) {
  std::wstring value(512, L'\0');
  DWORD bytes = 1024;
  if (RegGetValueW(HKEY_CURRENT_USER, traceKey, name, RRF_RT_REG_SZ, nullptr, value.data(), &bytes) !=
      ERROR_SUCCESS)
    return {};
  value.resize(bytes / sizeof(wchar_t) - 1);
  return value;
}

Ended playAgain(const Path& file) {
  endSuitePrograms();
  std::vector<std::wstring> words{L"capsule",
                                  L"play",
                                  file.wstring(),
                                  L"--folder",
                                  (layout().elsewhere / L"PLAY").wstring(),
                                  L"--programs",
                                  programFolder().wstring()};
  if (file == traceFolder()) words.insert(words.end(), {L"--source", (layout().source / L"data").wstring()});
  return run(layout().tools(), words);
}

bool playsAll() {
  static const bool all = !variable(L"VORDANE_PLAY_AGAIN").empty();
  return all;
}

void expectPlayedAgain() {
  endSuitePrograms();
  if (!std::filesystem::exists(traceFolder()) || std::filesystem::is_empty(traceFolder())) return;
  const Path capsule = layout().elsewhere / L"played.capsule";
  std::filesystem::remove(capsule);  // of a test before on the same suite
  const Ended made = run(layout().tools(), {L"capsule", L"make", layout().root.wstring(), capsule.wstring(),
                                            L"--exchange", L"PBX-1", L"--trace", traceFolder().wstring()});
  std::cout << made.output;
  constexpr DWORD leftSomethingOut = 3;
  ASSERT_TRUE(made.code == 0 || made.code == leftSomethingOut) << made.code;
  const Ended played = playAgain(capsule);
  std::cout << played.output;
  EXPECT_EQ(played.code, 0);
  std::filesystem::remove_all(traceFolder());
}

}  // namespace vordane::suite

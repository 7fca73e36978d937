// The guide as a technician opens it: from the window's system menu, offline, at the topic of what has the
// focus.
#include <windows.h>

#include "library/installed_suite.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/window/children.h"

namespace vordane::suite {
namespace {

using window::win32::idGrid;
using window::win32::idLookUpText;

constexpr const wchar_t* classes = L"Software\\Classes\\";

void setClass(const std::wstring& name, const std::wstring& value) {
  com::RegistryKey key;
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, (classes + name).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.put(),
                  nullptr);
  RegSetValueExW(key.get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                 static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

std::wstring classOf(const std::wstring& name) {
  wchar_t value[1024] = L"";
  DWORD bytes = sizeof value;
  RegGetValueW(HKEY_LOCAL_MACHINE, (classes + name).c_str(), nullptr, RRF_RT_REG_SZ, nullptr, value, &bytes);
  return value;
}

// In the place of the workstation's browser something that only notes which page it is given.
class PagesNoted {
 public:
  PagesNoted() {
    const Path noter = layout().helpers / L"suite" / L"page_noter.exe";
    setClass(std::wstring(pages) + L"\\shell\\open\\command",
             L"\"" + noter.wstring() + L"\" \"" + noted().wstring() + L"\" \"%1\"");
    setClass(L".html", pages);
  }
  ~PagesNoted() {
    setClass(L".html", before_);
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, (std::wstring(classes) + pages).c_str());
  }
  PagesNoted(const PagesNoted&) = delete;
  PagesNoted& operator=(const PagesNoted&) = delete;

  // The last of them, when there are that many.
  static std::string awaitPage(std::size_t count) {
    std::vector<std::string> lines;
    await("page " + std::to_string(count) + " of the guide", [&] {
      if (std::filesystem::exists(noted())) lines = linesOf(readText(noted()));
      return lines.size() >= count;
    });
    return lines[count - 1];
  }

 private:
  static Path noted() { return layout().elsewhere / L"pages.txt"; }
  static constexpr const wchar_t* pages = L"VordaneTest.Page";
  std::wstring before_ = classOf(L".html");
};

class Guide : public InstalledSuite {
 protected:
  static Path pageOf(const std::string& topic) {
    return layout().addins() / L"HELP" / L"GUIDE" / (topic + ".html");
  }
};

TEST_F(Guide, OpensFromTheSystemMenuAtTheTopicOfWhatHasTheFocus) {
  std::filesystem::create_directories(pageOf("find").parent_path());
  for (const char* topic : {"find", "list"}) writeText(pageOf(topic), "a page");
  const PagesNoted pages;
  keepLog();
  StartedByHand addin;
  addin.fetch();
  addin.window.press(L"cmdLookUp");
  addin.window.awaitFocus(idLookUpText);
  addin.window.askForGuide();
  EXPECT_EQ(PagesNoted::awaitPage(1), utf8(pageOf("find")));
  addin.window.pressKey(VK_ESCAPE);
  addin.window.awaitFocus(idGrid);
  addin.window.askForGuide();
  EXPECT_EQ(PagesNoted::awaitPage(2), utf8(pageOf("list")));

  // One that is missing is told where a person looks, and opens nothing.
  std::filesystem::remove(pageOf("list"));
  const std::string before = addin.window.textOf(L"account");
  addin.window.askForGuide();
  await("a word of the missing page", [&] { return addin.window.textOf(L"account") != before; });
  EXPECT_NE(addin.window.textOf(L"account").find(utf8(pageOf("list"))), std::string::npos);
  addin.window.press(L"cmdClose");
  EXPECT_EQ(addin.program.wait(), 0);
}

}  // namespace
}  // namespace vordane::suite

#include <exception>
#include <string>

#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"

namespace vordane::windows {
namespace {

constexpr int answerYes = 6;

// The box that is up now: the system hands its help request to a plain function. Boxes can stand above
// each other, the newest asks.
struct Shown {
  const platform::MessageBoxRequest* request;
  const SystemMessageBoxes::HelpWanted* helpWanted;
  Shown* below;
};
Shown* newest = nullptr;

void CALLBACK askForHelp(LPHELPINFO) {
  if (newest == nullptr || newest->request->helpFile.empty()) return;
  try {
    if (*newest->helpWanted) (*newest->helpWanted)(newest->request->helpFile);
  } catch (const std::exception&) {
    // The box that asked stays, without its help.
  }
}

}  // namespace

SystemMessageBoxes::SystemMessageBoxes(Owner owner, HelpWanted helpWanted)
    : owner_(std::move(owner)), helpWanted_(std::move(helpWanted)) {}

// A box of a hidden window would have no button on the task bar and could lie behind the window of a host
// that waits for its answer.
HWND SystemMessageBoxes::shownOwner() const {
  const HWND owner = owner_ ? owner_() : nullptr;
  return owner != nullptr && IsWindowVisible(owner) ? owner : nullptr;
}

int SystemMessageBoxes::styleFor(int asked, HWND owner) {
  return owner == nullptr ? asked | static_cast<int>(MB_SETFOREGROUND) : asked;
}

int SystemMessageBoxes::show(const platform::MessageBoxRequest& request) {
  if (!stationIsVisible()) return answerYes;
  const std::wstring prompt(request.prompt.begin(), request.prompt.end());
  const std::wstring title(request.title.begin(), request.title.end());
  MSGBOXPARAMSW box{};
  box.cbSize = sizeof box;
  box.hwndOwner = shownOwner();
  box.lpszText = prompt.c_str();
  box.lpszCaption = title.c_str();
  box.dwStyle = static_cast<DWORD>(styleFor(request.style, box.hwndOwner));
  box.dwContextHelpId = static_cast<DWORD_PTR>(request.helpContext.value_or(0));
  box.lpfnMsgBoxCallback = askForHelp;
  Shown shown{&request, &helpWanted_, newest};
  newest = &shown;
  const int answer = MessageBoxIndirectW(&box);
  newest = shown.below;
  return answer;
}

}  // namespace vordane::windows

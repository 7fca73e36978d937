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
  if (*newest->helpWanted) (*newest->helpWanted)(newest->request->helpFile);
}

}  // namespace

SystemMessageBoxes::SystemMessageBoxes(Owner owner, HelpWanted helpWanted)
    : owner_(std::move(owner)), helpWanted_(std::move(helpWanted)) {}

int SystemMessageBoxes::show(const platform::MessageBoxRequest& request) {
  if (!stationIsVisible()) return answerYes;
  const std::wstring prompt(request.prompt.begin(), request.prompt.end());
  const std::wstring title(request.title.begin(), request.title.end());
  MSGBOXPARAMSW box{};
  box.cbSize = sizeof box;
  box.hwndOwner = owner_ ? owner_() : nullptr;
  box.lpszText = prompt.c_str();
  box.lpszCaption = title.c_str();
  box.dwStyle = static_cast<DWORD>(request.style);
  box.dwContextHelpId = static_cast<DWORD_PTR>(request.helpContext.value_or(0));
  box.lpfnMsgBoxCallback = askForHelp;
  Shown shown{&request, &helpWanted_, newest};
  newest = &shown;
  const int answer = MessageBoxIndirectW(&box);
  newest = shown.below;
  return answer;
}

}  // namespace vordane::windows

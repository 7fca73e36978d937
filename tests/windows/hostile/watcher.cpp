#include "watcher.h"

#include <utility>

#include "desk.h"
#include "program.h"
#include "windows/rounds/measuring.h"

namespace vordane::hostile {
namespace {

constexpr DWORD betweenLooks = 30;   // milliseconds
constexpr DWORD hangsAtLeast = 300;  // before it is ended: what comes meanwhile meets it
constexpr int textId = 0xFFFF;       // of a message box's text
constexpr int buttons[] = {IDYES, IDOK, IDNO, IDRETRY, IDCANCEL};

com::Handle event(const wchar_t* name) {
  return com::Handle(CreateEventW(nullptr, FALSE, FALSE, name));
}

std::wstring textOf(HWND window) {
  wchar_t text[512] = L"";
  InternalGetWindowText(window, text, 512);  // asks nobody, who might not answer
  return text;
}

}  // namespace

Watcher::Watcher()
    : over_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      hostHangs_(event(hangingEvent(Role::host))),
      exchangeHangs_(event(hangingEvent(Role::exchange))),
      thread_([this] { run(); }) {}

Watcher::~Watcher() {
  SetEvent(over_.get());
  thread_.join();
}

void Watcher::run() {
  while (WaitForSingleObject(over_.get(), betweenLooks) == WAIT_TIMEOUT) {
    lookAtBoxes();
    lookAtAddIns();
    lookForHanging();
  }
}

std::vector<std::wstring> Watcher::takeBoxes() {
  const std::lock_guard lock(mutex_);
  return std::exchange(boxes_, {});
}

std::vector<DWORD> Watcher::takeBadEnds() {
  const std::lock_guard lock(mutex_);
  return std::exchange(badEnds_, {});
}

void Watcher::lookAtAddIns() {
  for (const DWORD id : test::processesOf(L"VORDANE.EXE")) {
    if (running_.count(id) != 0) continue;
    com::Handle process = test::openProcess(id);
    if (!process) continue;
    running_.emplace(id, std::move(process));
    ++addIns_;
  }
  std::erase_if(running_, [this](const auto& entry) {
    if (WaitForSingleObject(entry.second.get(), 0) != WAIT_OBJECT_0) return false;
    DWORD code = 0;
    GetExitCodeProcess(entry.second.get(), &code);
    if (code != 0) {
      const std::lock_guard lock(mutex_);
      badEnds_.push_back(code);
    }
    return true;
  });
}

// One button after another: whatever a person might press.
BOOL CALLBACK Watcher::eachWindow(HWND window, LPARAM self) {
  auto& watcher = *reinterpret_cast<Watcher*>(self);
  DWORD process = 0;
  wchar_t name[16] = L"";
  GetWindowThreadProcessId(window, &process);
  GetClassNameW(window, name, 16);
  if (std::wstring(name) == L"#32768" && watcher.running_.count(process) != 0)
    PostMessageW(addInWindow(), WM_CANCELMODE, 0, 0);
  if (std::wstring(name) != L"#32770" || watcher.running_.count(process) == 0 || !IsWindowVisible(window))
    return TRUE;
  for (unsigned tried = 0; tried < std::size(buttons); ++tried) {
    const int button = buttons[watcher.next_++ % std::size(buttons)];
    if (GetDlgItem(window, button) == nullptr) continue;
    {
      const std::lock_guard lock(watcher.mutex_);
      watcher.boxes_.push_back(textOf(window) + L": " + textOf(GetDlgItem(window, textId)));
    }
    PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(button), 0);
    break;
  }
  return TRUE;
}

void Watcher::lookAtBoxes() {
  EnumWindows(eachWindow, reinterpret_cast<LPARAM>(this));
}

void Watcher::lookForHanging() {
  const std::pair<const com::Handle*, const wchar_t*> programs[] = {{&hostHangs_, L"EvilHost.exe"},
                                                                    {&exchangeHangs_, L"EvilExchange.exe"}};
  for (const auto& [hangs, name] : programs) {
    if (WaitForSingleObject(hangs->get(), 0) != WAIT_OBJECT_0) continue;
    Sleep(hangsAtLeast);
    for (const DWORD id : test::processesOf(name)) {
      const com::Handle process(OpenProcess(PROCESS_TERMINATE, FALSE, id));
      if (process && TerminateProcess(process.get(), killedWhileItHung)) ++killed_;
    }
  }
}

}  // namespace vordane::hostile

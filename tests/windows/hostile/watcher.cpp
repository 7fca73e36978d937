#include "watcher.h"

#include <utility>

#include "desk.h"
#include "program.h"
#include "windows/rounds/measuring.h"

namespace vordane::hostile {
namespace {

constexpr DWORD betweenLooks = 50;   // milliseconds, for boxes
constexpr int looksAtProcesses = 8;  // one in so many: all processes are much to ask the system for
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
  const HANDLE events[] = {over_.get(), hostHangs_.get(), exchangeHangs_.get()};
  const wchar_t* const programs[] = {L"", L"EvilHost.exe", L"EvilExchange.exe"};
  for (int look = 0;; ++look) {
    const DWORD came = WaitForMultipleObjects(3, events, FALSE, betweenLooks);
    if (came == WAIT_OBJECT_0) return;
    if (came != WAIT_TIMEOUT) endHanging(programs[came - WAIT_OBJECT_0]);
    lookAtBoxes();
    if (look % looksAtProcesses == 0) lookAtAddIns();
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

// One of the add-in's, also of one that has not been seen yet.
bool Watcher::isAddIns(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (running_.count(process) == 0) lookAtAddIns();
  return running_.count(process) != 0;
}

// One button after another: whatever a person might press.
void Watcher::answer(HWND box) {
  for (unsigned tried = 0; tried < std::size(buttons); ++tried) {
    const int button = buttons[next_++ % std::size(buttons)];
    if (GetDlgItem(box, button) == nullptr) continue;
    {
      const std::lock_guard lock(mutex_);
      boxes_.push_back(textOf(box) + L": " + textOf(GetDlgItem(box, textId)));
    }
    PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
    return;
  }
}

void Watcher::lookAtBoxes() {
  for (HWND box = nullptr; (box = FindWindowExW(nullptr, box, L"#32770", nullptr)) != nullptr;)
    if (IsWindowVisible(box) && isAddIns(box)) answer(box);
  if (const HWND menu = FindWindowW(L"#32768", nullptr); menu != nullptr && isAddIns(menu))
    PostMessageW(addInWindow(), WM_CANCELMODE, 0, 0);
}

void Watcher::endHanging(const wchar_t* program) {
  Sleep(hangsAtLeast);
  for (const DWORD id : test::processesOf(program)) {
    const com::Handle process(OpenProcess(PROCESS_TERMINATE, FALSE, id));
    if (process && TerminateProcess(process.get(), killedWhileItHung)) ++killed_;
  }
}

}  // namespace vordane::hostile

#include "watcher.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "desk.h"
#include "platform/windows/com/values.h"
#include "program.h"
#include "text/utf8.h"
#include "windows/rounds/measuring.h"

namespace vordane::hostile {
namespace {

constexpr DWORD betweenLooks = 20;    // milliseconds, for boxes
constexpr int looksAtProcesses = 20;  // one in so many: all processes are much to ask the system for
constexpr DWORD hangsAtLeast = 300;   // before it is ended: what comes meanwhile meets it
constexpr int textId = 0xFFFF;        // of a message box's text
constexpr int buttons[] = {IDYES, IDOK, IDNO, IDRETRY, IDCANCEL};

std::FILE* openLog() {
  const char* name = std::getenv("VORDANE_HOSTILE_LOG");
  return name == nullptr ? nullptr : std::fopen(name, "w");
}

std::wstring textOf(HWND window) {
  wchar_t text[512] = L"";
  InternalGetWindowText(window, text, 512);  // asks nobody, who might not answer
  return text;
}

BOOL CALLBACK takeDialog(HWND window, LPARAM list) {
  constexpr std::wstring_view dialog = L"#32770";
  wchar_t name[16] = L"";
  GetClassNameW(window, name, 16);
  if (name == dialog) reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  return TRUE;
}

// A list of a moment: going on from a window that is being destroyed brings Wine's own server to a stand.
std::vector<HWND> dialogs() {
  std::vector<HWND> found;
  EnumWindows(takeDialog, reinterpret_cast<LPARAM>(&found));
  return found;
}

}  // namespace

Watcher::Watcher(const Board& board)
    : board_(board),
      over_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      log_(openLog(), &std::fclose),
      thread_([this] { run(); }) {}

Watcher::~Watcher() {
  SetEvent(over_.get());
  thread_.join();
}

void Watcher::run() {
  for (int look = 0; WaitForSingleObject(over_.get(), betweenLooks) == WAIT_TIMEOUT; ++look) {
    endHanging();
    lookAtBoxes();
    if (look % looksAtProcesses == 0) lookAtAddIns();
    writeLog();
  }
  writeLog();
}

void Watcher::writeLog() {
  if (log_ == nullptr) return;
  for (const std::string& line : board_.linesSince(logged_)) std::fprintf(log_.get(), "%s\n", line.c_str());
  std::fflush(log_.get());
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
    remember(box);
    PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
    return;
  }
}

// Once: a slow one may be met again before it has taken its answer.
void Watcher::remember(HWND box) {
  if (std::find(answered_.begin(), answered_.end(), box) != answered_.end()) return;
  const std::lock_guard lock(mutex_);
  boxes_.push_back(textOf(box) + L": " + textOf(GetDlgItem(box, textId)));
  board_.note('B', text::toUtf8(com::fromWide(boxes_.back())));
}

void Watcher::lookAtBoxes() {
  std::vector<HWND> now;
  for (const HWND box : dialogs()) {
    if (!IsWindowVisible(box) || !isAddIns(box)) continue;
    answer(box);
    now.push_back(box);
  }
  answered_ = std::move(now);
  if (const HWND menu = FindWindowW(L"#32768", nullptr); menu != nullptr && isAddIns(menu))
    PostMessageW(addInWindow(), WM_CANCELMODE, 0, 0);
}

void Watcher::endHanging() {
  const std::vector<DWORD> hanging = board_.takeHanging();
  if (hanging.empty()) return;
  Sleep(hangsAtLeast);
  for (const DWORD id : hanging) {
    const com::Handle process(OpenProcess(PROCESS_TERMINATE, FALSE, id));
    if (process && TerminateProcess(process.get(), killedWhileItHung)) ++killed_;
  }
}

}  // namespace vordane::hostile

#include "platform/windows/window/signals.h"

#include <shobjidl.h>

#include <algorithm>

#include "platform/windows/window/grid_paint.h"
#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {
namespace {

using attention::Lamp;
using attention::Overlay;
using Icon = Owned<HICON, DestroyIcon>;

// The lamps' colours on a task bar of any colour: the shape stands on white.
constexpr COLORREF majorInk = RGB(196, 43, 28), minorInk = RGB(157, 93, 0), ground = RGB(255, 255, 255);

// The grid's triangle, filled for a major alarm. What the mask leaves white is not drawn.
Icon severityIcon(bool major, int size) {
  const WindowDc screen(nullptr);
  const Bitmap colours(CreateCompatibleBitmap(screen.get(), size, size));
  const Bitmap mask(CreateBitmap(size, size, 1, 1, nullptr));
  const MemoryDc dc(CreateCompatibleDC(screen.get()));
  const RECT all{0, 0, size, size};
  const int pen = std::max(1, size / 8);
  {
    const Selected drawn(dc.get(), mask.get());
    FillRect(dc.get(), &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    drawSeverity(dc.get(), all, true, RGB(0, 0, 0), pen);
  }
  {
    const Selected drawn(dc.get(), colours.get());
    FillRect(dc.get(), &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    drawSeverity(dc.get(), all, true, major ? majorInk : ground, pen);
    drawSeverity(dc.get(), all, major, major ? majorInk : minorInk, pen);
  }
  ICONINFO icon{};
  icon.fIcon = TRUE;
  icon.hbmMask = mask.get();
  icon.hbmColor = colours.get();
  return Icon(CreateIconIndirect(&icon));
}

class SystemSignals final : public Signals {
 public:
  SystemSignals() = default;
  SystemSignals(const SystemSignals&) = delete;
  SystemSignals& operator=(const SystemSignals&) = delete;
  ~SystemSignals() override {
    if (taskBar_ != nullptr) taskBar_->Release();
  }

  void flash(HWND window) override {
    FLASHWINFO info{};
    info.cbSize = sizeof info;
    info.hwnd = window;
    info.dwFlags = FLASHW_TRAY | FLASHW_TIMERNOFG;
    FlashWindowEx(&info);
  }

  void sound(Lamp lamp) override { MessageBeep(lamp == Lamp::major ? MB_ICONHAND : MB_ICONEXCLAMATION); }

  void overlay(HWND window, Overlay overlay, const std::u16string& words) override {
    ITaskbarList3* bar = taskBar();
    if (bar == nullptr) return;
    const int size = GetSystemMetricsForDpi(SM_CXSMICON, GetDpiForWindow(window));
    const Icon icon = overlay == Overlay::none ? Icon() : severityIcon(overlay == Overlay::major, size);
    bar->SetOverlayIcon(window, icon.get(), wide(words));  // it keeps a copy
  }

 private:
  // Asked for when the first alarm comes.
  ITaskbarList3* taskBar() {
    if (asked_) return taskBar_;
    asked_ = true;
    void* made = nullptr;
    if (FAILED(CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3, &made)))
      return nullptr;
    taskBar_ = static_cast<ITaskbarList3*>(made);
    if (SUCCEEDED(taskBar_->HrInit())) return taskBar_;
    taskBar_->Release();
    return taskBar_ = nullptr;
  }

  bool asked_ = false;
  ITaskbarList3* taskBar_ = nullptr;
};

}  // namespace

std::unique_ptr<Signals> systemSignals() {
  return std::make_unique<SystemSignals>();
}

}  // namespace vordane::window::win32

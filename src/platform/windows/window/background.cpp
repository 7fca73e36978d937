#include "platform/windows/window/background.h"

#include <windows.h>

#include <objbase.h>
#include <ocidl.h>
#include <olectl.h>

#include "platform/windows/com/system_function.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/parts_paint.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

// How much of the panel's own colour lies over a picture: captions stand on it.
constexpr BYTE wash = 150;

void washOver(HDC dc, const RECT& place, COLORREF colour) {
  const MemoryDc point(CreateCompatibleDC(dc));
  const Bitmap dot(CreateCompatibleBitmap(dc, 1, 1));
  const Selected with(point.get(), dot.get());
  SetPixel(point.get(), 0, 0, colour);
  const BLENDFUNCTION blend{AC_SRC_OVER, 0, wash, 0};
  GdiAlphaBlend(dc, place.left, place.top, width(place), height(place), point.get(), 0, 0, 1, 1, blend);
}

constexpr std::u16string_view headerControl = u"imgHeader", windowControl = u"imgBackground",
                              detailControl = u"imgDetail";
constexpr int samples = 8;  // a picture is looked at in this many places across and down

void drawPicture(HDC dc, IPicture& picture, const RECT& place) {
  OLE_XSIZE_HIMETRIC pictureWidth = 0;
  OLE_YSIZE_HIMETRIC pictureHeight = 0;
  picture.get_Width(&pictureWidth);
  picture.get_Height(&pictureHeight);
  picture.Render(dc, place.left, place.top, width(place), height(place), 0, pictureHeight, pictureWidth,
                 -pictureHeight, nullptr);
}

// The colour between all of a small surface's points.
COLORREF middleOf(HDC dc) {
  int red = 0, green = 0, blue = 0;
  for (int place = 0; place < samples * samples; ++place) {
    const COLORREF point = GetPixel(dc, place % samples, place / samples);
    red += GetRValue(point);
    green += GetGValue(point);
    blue += GetBValue(point);
  }
  constexpr int all = samples * samples;
  return RGB(red / all, green / all, blue / all);
}

}  // namespace

void Background::Released::operator()(IPicture* picture) const {
  picture->Release();
}

Background::Picture Background::load(std::u16string_view path) {
  using Open = HRESULT(WINAPI*)(LPCWSTR, DWORD, IStream**);
  static const auto open = com::systemFunction<Open>(L"shlwapi.dll", "SHCreateStreamOnFileW");
  IStream* stream = nullptr;
  const std::u16string name(path);
  if (open == nullptr || FAILED(open(wide(name), STGM_READ | STGM_SHARE_DENY_WRITE, &stream))) return nullptr;
  void* picture = nullptr;
  const HRESULT result = OleLoadPicture(stream, 0, FALSE, IID_IPicture, &picture);
  stream->Release();
  return Picture(SUCCEEDED(result) ? static_cast<IPicture*>(picture) : nullptr);
}

bool pictureReadable(std::u16string_view path) {
  return Background::load(path) != nullptr;
}

Background::Picture* Background::pictureOf(const Control& control) {
  if (text::equalIgnoringCase(control.name(), headerControl)) return &header_;
  if (text::equalIgnoringCase(control.name(), windowControl)) return &window_;
  return text::equalIgnoringCase(control.name(), detailControl) ? &detail_ : nullptr;
}

void Background::update(const Control& control) {
  Picture* const picture = pictureOf(control);
  if (picture == nullptr) return;
  const bool shown = control.has(u"Picture") && (!control.has(u"Visible") || control.flag(u"Visible"));
  const std::u16string path = shown ? control.text(u"Picture") : std::u16string{};
  *picture = path.empty() ? nullptr : load(path);
  changed();
}

COLORREF Background::paneColour(const Palette& palette) const {
  if (!detail_ || palette.systemOnly) return palette.surface;
  const WindowDc screen(nullptr);
  const MemoryDc dc(CreateCompatibleDC(screen.get()));
  const Bitmap surface(CreateCompatibleBitmap(screen.get(), samples, samples));
  const Selected with(dc.get(), surface.get());
  drawPane(dc.get(), {0, 0, samples, samples}, palette);
  return middleOf(dc.get());
}

void Background::drawPane(HDC dc, const RECT& pane, const Palette& palette) const {
  fillRect(dc, pane, palette.surface);
  if (!detail_ || palette.systemOnly || width(pane) <= 0 || height(pane) <= 0) return;
  drawPicture(dc, *detail_, pane);
  washOver(dc, pane, palette.surface);
}

HBRUSH Background::brush(SIZE client, const RECT& header, const Palette& palette) {
  if (client.cx == drawnFor_.cx && client.cy == drawnFor_.cy && brush_) return brush_.get();
  drawnFor_ = client;
  if ((!window_ && !header_) || palette.systemOnly || client.cx <= 0 || client.cy <= 0) {
    brush_ = Brush(CreateSolidBrush(palette.panel));
    return brush_.get();
  }
  const WindowDc screen(nullptr);
  const MemoryDc dc(CreateCompatibleDC(screen.get()));
  bitmap_ = Bitmap(CreateCompatibleBitmap(screen.get(), client.cx, client.cy));
  {
    const Selected with(dc.get(), bitmap_.get());
    const RECT whole{0, 0, client.cx, client.cy};
    fillRect(dc.get(), whole, palette.panel);
    if (window_) drawPicture(dc.get(), *window_, whole);
    if (header_) drawPicture(dc.get(), *header_, header);
    washOver(dc.get(), whole, palette.panel);
  }
  brush_ = Brush(CreatePatternBrush(bitmap_.get()));
  return brush_.get();
}

}  // namespace vordane::window::win32

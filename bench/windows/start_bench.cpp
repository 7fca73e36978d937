// How soon a person reads the newest faults: from the start of the process until the last row of the first
// screen is painted, with few and with many faults stored, beside an empty program with a list view.
//
//   start_bench PROGRAM EXCHANGE DATABASE FEW MANY NUMBER EMPTY-PROGRAM
//
// FEW and MANY are stores with that exchange, of 1,000 and of NUMBER faults; they stand in the place of
// DATABASE by turns, which nobody else may have open. The suite must be installed.
#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/common/measure.h"
#include "bench/windows/started.h"
#include "platform/windows/window/handles.h"

namespace vordane::bench {
namespace {

constexpr int longest = 60;  // seconds until a start has failed

// A strip at the lower left of the list, where the last row of a screen has its first words.
struct Strip {
  static constexpr int left = 16, width = 180, height = 44, fromBottom = 12;
};

std::vector<COLORREF> pixelsOf(HWND list) {
  RECT place{};
  GetWindowRect(list, &place);
  const HDC screen = GetDC(nullptr);
  const window::win32::MemoryDc memory(CreateCompatibleDC(screen));
  const window::win32::Bitmap picture(CreateCompatibleBitmap(screen, Strip::width, Strip::height));
  {
    const window::win32::Selected selected(memory.get(), picture.get());
    BitBlt(memory.get(), 0, 0, Strip::width, Strip::height, screen, place.left + Strip::left,
           place.bottom - Strip::fromBottom - Strip::height, SRCCOPY);
  }
  BITMAPINFO form{};
  form.bmiHeader = {sizeof form.bmiHeader, Strip::width, -Strip::height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  std::vector<COLORREF> pixels(static_cast<std::size_t>(Strip::width) * Strip::height);
  GetDIBits(screen, picture.get(), 0, Strip::height, pixels.data(), &form, DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  for (COLORREF& pixel : pixels) pixel &= 0xFFFFFF;
  return pixels;
}

bool isLight(COLORREF pixel) {
  return (pixel & 0xFF) > 0xE0 && (pixel >> 8 & 0xFF) > 0xE0 && (pixel >> 16) > 0xE0;
}

bool isDark(COLORREF pixel) {
  return (pixel & 0xFF) < 0x80 && (pixel >> 8 & 0xFF) < 0x80 && (pixel >> 16) < 0x80;
}

// An empty list is light all over; words stand on a light ground, and take a small part of it.
bool isPainted(HWND list, bool words) {
  const std::vector<COLORREF> pixels = pixelsOf(list);
  const auto light = static_cast<std::size_t>(std::count_if(pixels.begin(), pixels.end(), isLight));
  const auto dark = static_cast<std::size_t>(std::count_if(pixels.begin(), pixels.end(), isDark));
  if (!words) return light == pixels.size();
  return light > pixels.size() / 2 && dark > 20;
}

// Null as long as none is seen.
HWND listOf(HWND window) {
  HWND list = nullptr;
  do list = FindWindowExW(window, list, WC_LISTVIEWW, nullptr);
  while (list != nullptr && !IsWindowVisible(list));
  return list;
}

double timeToScreen(const std::wstring& commandLine, const wchar_t* windowClass, bool words) {
  const auto begin = std::chrono::steady_clock::now();
  const auto time = [begin] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  const Started program(commandLine);
  while (time() < longest) {
    const HWND window = FindWindowW(windowClass, nullptr);
    const HWND list = window != nullptr ? listOf(window) : nullptr;
    if (list != nullptr && isPainted(list, words)) {
      const double painted = time();
      PostMessageW(window, WM_CLOSE, 0, 0);
      program.waitForEnd();
      return painted;
    }
    Sleep(1);
  }
  throw std::runtime_error("no screen of rows was painted");
}

void move(const std::wstring& from, const std::wstring& to) {
  if (!MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING))
    throw std::runtime_error("a store can not be put into its place");
}

// A store while it stands in the place of the database.
class InPlace {
 public:
  InPlace(std::wstring store, std::wstring database)
      : store_(std::move(store)), database_(std::move(database)) {
    move(store_, database_);
  }
  ~InPlace() { MoveFileExW(database_.c_str(), store_.c_str(), MOVEFILE_REPLACE_EXISTING); }
  InPlace(const InPlace&) = delete;
  InPlace& operator=(const InPlace&) = delete;

 private:
  std::wstring store_, database_;
};

struct Words {
  std::wstring program, exchange, database, few, many, number, empty;
};

void measure(const Words& words) {
  const std::string many = thousands(static_cast<std::size_t>(_wtoi(words.number.c_str())));
  const auto ours = [&](const std::wstring& store) {
    const InPlace stored(store, words.database);
    return timeToScreen(L'"' + words.program + L"\" " + words.exchange, L"VordaneWindow", true);
  };
  const auto empty = [&] { return timeToScreen(L'"' + words.empty + L'"', L"VordaneBenchEmpty", false); };
  const std::string plain = "an empty program with a list view";
  Comparison fewToEmpty("start to the first screen, 1,000 stored", plain, timeAtMost(1.4));
  Comparison manyToEmpty("start to the first screen, " + many + " stored", plain, noGoal);
  Comparison manyToFew("start to the first screen, " + many + " stored", "the same, 1,000 stored",
                       timeAtMost(1.2));
  empty();
  ours(words.few);
  ours(words.many);
  for (int run = 0; run < 2 * runs; ++run) {
    const double bare = empty(), little = ours(words.few), much = ours(words.many);
    fewToEmpty.add(little, bare);
    manyToEmpty.add(much, bare);
    manyToFew.add(much, little);
  }
  fewToEmpty.print();
  manyToEmpty.print();
  manyToFew.print();
}

}  // namespace
}  // namespace vordane::bench

int main() {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  if (count != 8) {
    std::fputs("usage: start_bench PROGRAM EXCHANGE DATABASE FEW MANY NUMBER EMPTY-PROGRAM\n", stderr);
    return 2;
  }
  try {
    vordane::bench::measure({words[1], words[2], words[3], words[4], words[5], words[6], words[7]});
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "failed: %s\n", failure.what());
    return 1;
  }
}

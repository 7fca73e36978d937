#include "platform/windows/window/detail_pane.h"

#include <windows.h>

#include <commctrl.h>
#include <richedit.h>

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <utility>

#include "platform/windows/window/geometry.h"
#include "platform/windows/window/input_messages.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

constexpr wchar_t richTextLibrary[] = L"msftedit.dll";
constexpr wchar_t richTextClass[] = L"RICHEDIT50W";

// Keeps selection, notifications and painting as they were while characters are given another look.
class QuietChange {
 public:
  explicit QuietChange(HWND pane) : pane_(pane) {
    events_ = SendMessageW(pane_, EM_SETEVENTMASK, 0, 0);
    SendMessageW(pane_, WM_SETREDRAW, FALSE, 0);
    SendMessageW(pane_, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection_));
    SendMessageW(pane_, EM_GETSCROLLPOS, 0, reinterpret_cast<LPARAM>(&scroll_));
  }
  QuietChange(const QuietChange&) = delete;
  QuietChange& operator=(const QuietChange&) = delete;
  ~QuietChange() {
    SendMessageW(pane_, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&selection_));
    SendMessageW(pane_, EM_SETSCROLLPOS, 0, reinterpret_cast<LPARAM>(&scroll_));
    SendMessageW(pane_, WM_SETREDRAW, TRUE, 0);
    SendMessageW(pane_, EM_SETEVENTMASK, 0, events_);
    InvalidateRect(pane_, nullptr, TRUE);
  }

 private:
  HWND pane_;
  LRESULT events_ = 0;
  CHARRANGE selection_{};
  POINT scroll_{};
};

CHARRANGE charRange(Range range) {
  return {static_cast<LONG>(range.begin), static_cast<LONG>(range.end)};
}

CHARRANGE selectionOf(HWND pane) {
  CHARRANGE selection{};
  SendMessageW(pane, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
  return selection;
}

int desktopDpi() {
  const WindowDc dc(nullptr);
  return GetDeviceCaps(dc.get(), LOGPIXELSY);
}

LONG placeOf(HWND pane, std::size_t position) {
  POINTL place{};
  SendMessageW(pane, EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&place), static_cast<LPARAM>(position));
  return place.x;
}

bool sameRanges(const std::vector<Range>& a, const std::vector<Range>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](Range x, Range y) { return x.begin == y.begin && x.end == y.end; });
}

}  // namespace

void DetailPane::create(HWND parent, int id, std::function<LRESULT(WPARAM wide, LPARAM low)> objectAsked) {
  objectAsked_ = std::move(objectAsked);
  source_ = nullptr;
  dpi_ = zoomed_ = 0;
  takesInput_ = true;
  richText_ = Library(LoadLibraryExW(richTextLibrary, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
  window_ = CreateWindowExW(
      0, richTextClass, L"",
      WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL, 0, 0, 0,
      0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
  SendMessageW(window_, EM_SETEVENTMASK, 0, ENM_SELCHANGE);
  watch_.start(window_, [this](UINT message, WPARAM wide, LPARAM low) { return heard(message, wide, low); });
}

void DetailPane::setLook(const Control* control, int dpi, const Palette& palette) {
  palette_ = palette;
  if (std::exchange(dpi_, dpi) != dpi) scaleKnown_ = false;
  const FontChoice choice = fontOf(control);
  plain_ = makeFont(choice, dpi);
  bold_ = makeFont(choice, dpi, FontStyle::bold);
  fixed_ = makeFont(choice, dpi, FontStyle::fixedWidth);
  SendMessageW(window_, EM_SETBKGNDCOLOR, 0, static_cast<LPARAM>(palette.surface));
  render();
}

void DetailPane::showFault(GridSource& source, std::size_t row, const std::u16string& description) {
  if (source_ == &source && row_ == row && description_ == description) return;  // keeps what is selected
  source_ = &source;
  row_ = row;
  description_ = description;
  text_ = paneText(description);
  known_.clear();
  marks_.clear();
  auto data = source.dataPart(row);
  if (!data || data->end > description.size()) data = guessedDataPart(description);
  data_.reset();
  if (data) {
    dataInDescription_ = data->begin;
    data_ = Range{text_.shown(data->begin), text_.shown(data->end)};
  }
  SetWindowTextW(window_, wide(text_.text));
  render();
}

void DetailPane::showHint(const std::u16string& text) {
  source_ = nullptr;
  text_ = PaneText{};
  data_.reset();
  known_.clear();
  marks_.clear();
  SetWindowTextW(window_, wide(text));
  render();
}

void DetailPane::render() {
  if (window_ == nullptr) return;
  formatText();
  if (!scaleKnown_) fitScale();
}

void DetailPane::formatText() {
  const QuietChange quiet(window_);
  const Range all{0, static_cast<std::size_t>(GetWindowTextLengthW(window_))};
  format(all, source_ != nullptr ? palette_.text : palette_.quiet, plain_.get(), palette_.surface);
  if (source_ == nullptr) return;
  format({0, text_.titleEnd}, palette_.text, bold_.get(), palette_.surface);
  if (data_) format(*data_, palette_.text, fixed_.get(), palette_.surface);
  paintMarks(hits(), true);
  paintMarks(marks_, true);
}

void DetailPane::mark(const std::u16string& needle) {
  if (needle == needle_) return;
  needle_ = needle;
  render();
}

std::vector<Range> DetailPane::hits() const {
  std::vector<Range> found;
  if (source_ == nullptr || needle_.empty()) return found;
  const std::u16string lower = text::toLower(text_.text);
  for (auto at = lower.find(needle_); at != lower.npos; at = lower.find(needle_, at + needle_.size()))
    found.push_back({at, at + needle_.size()});
  return found;
}

void DetailPane::format(Range range, COLORREF ink, HFONT face, COLORREF ground) {
  const CHARRANGE chosen = charRange(range);
  SendMessageW(window_, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&chosen));
  LOGFONTW font{};
  GetObjectW(face, sizeof font, &font);
  CHARFORMAT2W look{};
  look.cbSize = sizeof look;
  look.dwMask = CFM_FACE | CFM_SIZE | CFM_COLOR | CFM_BACKCOLOR | CFM_BOLD | CFM_CHARSET;
  look.dwEffects = font.lfWeight >= FW_SEMIBOLD ? CFE_BOLD : 0;
  look.yHeight = toTwips(-static_cast<int>(font.lfHeight), dpi_);  // the face was made at this density
  look.crTextColor = ink;
  look.crBackColor = ground;
  look.bCharSet = DEFAULT_CHARSET;
  std::wcsncpy(look.szFaceName, font.lfFaceName, LF_FACESIZE - 1);
  SendMessageW(window_, EM_SETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&look));
}

// The lines are broken anew with the next format only.
void DetailPane::zoom(int numerator, int denominator) {
  if (numerator == zoomed_) return;
  zoomed_ = numerator;
  SendMessageW(window_, EM_SETZOOM, static_cast<WPARAM>(numerator), denominator);
  formatText();
}

// Sizes are given in points. Whether the control draws them for the density of its own screen or for that of
// the whole desktop differs between its versions: where the two densities differ, the first line is measured.
void DetailPane::fitScale() {
  const int desktop = desktopDpi();
  zoom(0, 0);
  scaleKnown_ = dpi_ == desktop;
  if (scaleKnown_) return;
  const std::u16string shown = windowText(window_);
  const auto length = static_cast<std::size_t>(SendMessageW(window_, EM_LINELENGTH, 0, 0));
  if (length < 2 || length > shown.size()) return;  // measured when there is something to measure
  const int drawn = static_cast<int>(placeOf(window_, length - 1) - placeOf(window_, 0));
  const int wanted = textWidth(source_ != nullptr ? bold_.get() : plain_.get(),
                               std::u16string_view(shown).substr(0, length - 1));
  const int unscaled = MulDiv(wanted, desktop, dpi_);
  if (std::abs(drawn - unscaled) < std::abs(drawn - wanted)) zoom(dpi_, desktop);
  scaleKnown_ = true;
}

void DetailPane::paintMarks(const std::vector<Range>& ranges, bool on) {
  for (const Range range : ranges) {
    const CHARRANGE chosen = charRange(range);
    SendMessageW(window_, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&chosen));
    CHARFORMAT2W look{};
    look.cbSize = sizeof look;
    look.dwMask = CFM_COLOR | CFM_BACKCOLOR;
    look.crTextColor = on ? palette_.markText : palette_.text;
    look.crBackColor = on ? palette_.mark : palette_.surface;
    SendMessageW(window_, EM_SETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&look));
  }
}

const std::vector<Range>& DetailPane::provenance(std::size_t position) {
  const std::size_t place = text_.origin[position];
  const auto found = known_.find(place);
  if (found != known_.end()) return found->second;
  return known_.emplace(place, source_->provenance(row_, place)).first->second;
}

// The value is the run of neighbours that came from the same data as the character pointed at.
std::vector<Range> DetailPane::marksFor(std::size_t position) {
  if (source_ == nullptr || !data_ || position >= text_.text.size()) return {};
  const std::vector<Range> came = provenance(position);
  if (came.empty()) return {};
  Range value{position, position + 1};
  while (value.begin > 0 && sameRanges(provenance(value.begin - 1), came)) --value.begin;
  while (value.end < text_.text.size() && sameRanges(provenance(value.end), came)) ++value.end;
  std::vector<Range> found{value};
  for (const Range part : came) {
    const Range shown{text_.shown(dataInDescription_ + part.begin),
                      std::min(text_.shown(dataInDescription_ + part.end), data_->end)};
    if (shown.begin < shown.end && !sameRanges({shown}, {value})) found.push_back(shown);
  }
  return found;
}

void DetailPane::point(std::size_t position) {
  const CHARRANGE selection = selectionOf(window_);
  if (selection.cpMin != selection.cpMax) return;  // a selection being made is left alone
  std::vector<Range> wanted = marksFor(position);
  if (sameRanges(wanted, marks_)) return;
  const QuietChange quiet(window_);
  paintMarks(marks_, false);
  paintMarks(hits(), true);
  marks_ = std::move(wanted);
  paintMarks(marks_, true);
}

void DetailPane::mouseAt(POINT place) {
  POINTL asked{place.x, place.y};
  auto position =
      static_cast<std::size_t>(SendMessageW(window_, EM_CHARFROMPOS, 0, reinterpret_cast<LPARAM>(&asked)));
  POINTL corner{};
  SendMessageW(window_, EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&corner), static_cast<LPARAM>(position));
  // Beside or below the text the nearest character is answered, which is not pointed at.
  const int reach = lineHeight(plain_.get());
  if (std::abs(asked.x - corner.x) > reach || asked.y < corner.y || asked.y > corner.y + 2 * reach)
    position = text_.text.size();
  point(position);
}

bool DetailPane::notified(const NMHDR& header) {
  if (header.hwndFrom != window_ || header.code != EN_SELCHANGE) return false;
  if (GetFocus() == window_) point(static_cast<std::size_t>(selectionOf(window_).cpMin));
  return true;
}

LRESULT DetailPane::heard(UINT message, WPARAM wide, LPARAM low) {
  if (!takesInput_ && message == WM_NCHITTEST) return HTTRANSPARENT;
  if (!takesInput_ && isInput(message)) return 0;
  if (message == WM_GETOBJECT)
    if (const LRESULT object = objectAsked_(wide, low)) return object;
  if (message == WM_DPICHANGED_AFTERPARENT) {
    const LRESULT answer = watch_.pass(message, wide, low);
    fitScale();  // the control has adapted by now, if it does
    return answer;
  }
  if (message == WM_MOUSEMOVE && (wide & MK_LBUTTON) == 0)
    mouseAt({static_cast<short>(LOWORD(low)), static_cast<short>(HIWORD(low))});
  // Tab, Enter and Esc belong to the window, everything else to the text.
  if (message == WM_GETDLGCODE) return DLGC_WANTARROWS | DLGC_WANTCHARS | DLGC_HASSETSEL;
  return watch_.pass(message, wide, low);
}

}  // namespace vordane::window::win32

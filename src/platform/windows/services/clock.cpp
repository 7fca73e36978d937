#include <array>

#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"
#include "text/numbers.h"

namespace vordane::windows {
namespace {

SYSTEMTIME systemTime(const platform::LocalTime& time) {
  SYSTEMTIME out{};
  out.wYear = static_cast<WORD>(time.year);
  out.wMonth = static_cast<WORD>(time.month);
  out.wDay = static_cast<WORD>(time.day);
  out.wHour = static_cast<WORD>(time.hour);
  out.wMinute = static_cast<WORD>(time.minute);
  out.wSecond = static_cast<WORD>(time.second);
  return out;
}

using Text = std::array<wchar_t, 128>;

}  // namespace

platform::LocalTime SystemClock::now() {
  SYSTEMTIME time;
  GetLocalTime(&time);
  return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

std::u16string timeOfLine() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return text::decimalPadded(now.wHour, 2) + u":" + text::decimalPadded(now.wMinute, 2) + u":" +
         text::decimalPadded(now.wSecond, 2) + u"." + text::decimalPadded(now.wMilliseconds, 3);
}

double SystemClock::secondsSinceMidnight() {
  SYSTEMTIME time;
  GetLocalTime(&time);
  return (time.wHour * 60 + time.wMinute) * 60 + time.wSecond + time.wMilliseconds / 1000.0;
}

void SystemClock::sleep(int milliseconds) {
  Sleep(milliseconds > 0 ? static_cast<DWORD>(milliseconds) : 0);
}

std::u16string SystemClock::regional(const platform::LocalTime& time) {
  const SYSTEMTIME parts = systemTime(time);
  Text date{};
  Text clock{};
  GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, DATE_SHORTDATE, &parts, nullptr, date.data(),
                  static_cast<int>(date.size()), nullptr);
  GetTimeFormatEx(LOCALE_NAME_USER_DEFAULT, 0, &parts, nullptr, clock.data(), static_cast<int>(clock.size()));
  return std::u16string(com::fromWide(date.data())) + u' ' + std::u16string(com::fromWide(clock.data()));
}

}  // namespace vordane::windows

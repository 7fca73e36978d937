#include "kit/windows/workstation.h"

#include <winternl.h>

#include <cstdio>

#include "kit/windows/running_programs.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"

namespace vordane::kit {
namespace {

std::string narrow(const std::wstring& text) {
  return text::toUtf8(com::fromWide(text));
}

template <class Function>
Function ofNt(const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

std::string product() {
  wchar_t text[128] = L"Windows";
  DWORD bytes = sizeof text;
  RegGetValueW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion", L"ProductName",
               RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY, nullptr, text, &bytes);
  return narrow(text);
}

// The version as it is, whatever a manifest says; under Wine both names, so that nobody takes it for Windows.
std::string system() {
  RTL_OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (const auto get = ofNt<LONG(WINAPI*)(RTL_OSVERSIONINFOW*)>("RtlGetVersion")) get(&version);
  std::string text = product() + " " + std::to_string(version.dwMajorVersion) + "." +
                     std::to_string(version.dwMinorVersion) + "." + std::to_string(version.dwBuildNumber);
  if (const auto wine = ofNt<const char*(CDECL*)()>("wine_get_version"))
    text = std::string("Wine ") + wine() + ", which stands for " + text;
  return text;
}

std::string words() {
  SYSTEM_INFO info{};
  GetNativeSystemInfo(&info);
  const bool wide = info.wProcessorArchitecture != PROCESSOR_ARCHITECTURE_INTEL;
  const bool arm = info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_ARM64;
  return std::string(wide ? "64-bit" : "32-bit") + (arm ? " (ARM)" : "") + ", " +
         std::to_string(info.dwNumberOfProcessors) + " processors";
}

std::string screen() {
  const HDC screen = GetDC(nullptr);
  const int dots = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return std::to_string(GetSystemMetrics(SM_CXSCREEN)) + " x " +
         std::to_string(GetSystemMetrics(SM_CYSCREEN)) + ", " + std::to_string(dots) + " dots an inch, " +
         std::to_string(GetSystemMetrics(SM_CMONITORS)) + " screens";
}

std::string languages() {
  wchar_t locale[LOCALE_NAME_MAX_LENGTH] = L"";
  GetUserDefaultLocaleName(locale, LOCALE_NAME_MAX_LENGTH);
  return narrow(locale) + ", code page " + std::to_string(GetACP());
}

}  // namespace

std::vector<std::pair<std::string, std::string>> describeSystem() {
  return {{"System", system()},
          {"Word size", words()},
          {"Rights", isAdministrator() ? "administrator" : "plain user"},
          {"Screen", screen()},
          {"Language", languages()}};
}

bool isAdministrator() {
  BYTE administrators[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof administrators;
  BOOL member = FALSE;
  return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators, &size) &&
         CheckTokenMembership(nullptr, administrators, &member) && member;
}

std::string localTime() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", now.wYear, now.wMonth, now.wDay,
                now.wHour, now.wMinute, now.wSecond);
  return text;
}

std::string reasonToRefuse(const Folders& folders) {
  if (!isAdministrator())
    return "Programs are registered for everybody, which needs the rights of an administrator. Start "
           "run-all.cmd from a "
           "prompt with raised rights.";
  for (const auto& [number, file] : processesNamed({L"VORDANE.EXE", L"Zulsim.exe", L"devhost.exe"}))
    if (!liesBelow(file, folders.kit))
      return "A program of an installed suite runs and could meet the tests: " + narrow(file) + " (process " +
             std::to_string(number) + "). Close it and start again.";
  if (windows::isOnNetworkDrive(std::u16string(com::fromWide(folders.kit.wstring()))))
    return "The kit lies on a network drive. Unpack it on a drive of this workstation.";
  return {};
}

}  // namespace vordane::kit

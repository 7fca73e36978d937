#include "server_process.h"

#include <array>
#include <utility>

namespace vordane::test {
namespace {

com::RegistryKey openKey(const std::wstring& key, REGSAM view) {
  com::RegistryKey opened;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\" + key).c_str(), 0, KEY_READ | view, opened.put());
  return opened;
}

std::string readAll(HANDLE pipe) {
  std::string out;
  std::array<char, 512> buffer;
  DWORD count = 0;
  while (ReadFile(pipe, buffer.data(), buffer.size(), &count, nullptr) && count > 0)
    out.append(buffer.data(), count);
  return out;
}

}  // namespace

std::wstring serverPath() {
  std::array<wchar_t, 1024> path{};
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  const std::wstring own(path.data());
  return own.substr(0, own.rfind(L'\\') + 1) + L"probeserver.exe";
}

int runServer(const std::wstring& arguments, std::string* printed) {
  com::Handle read;
  com::Handle write;
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  CreatePipe(read.put(), write.put(), &inherited, 0);
  SetHandleInformation(read.get(), HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = write.get();
  PROCESS_INFORMATION process{};
  std::wstring line = L"\"" + serverPath() + L"\" " + arguments;
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process))
    return -1;
  const com::Handle running(process.hProcess);
  const com::Handle thread(process.hThread);
  write.reset();
  const std::string text = readAll(read.get());
  if (printed != nullptr) *printed = text;
  WaitForSingleObject(running.get(), 60000);
  DWORD code = 99;
  GetExitCodeProcess(running.get(), &code);
  return static_cast<int>(code);
}

com::Handle openProcess(DWORD processId) {
  return com::Handle(OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, processId));
}

bool endsWithin(DWORD processId, DWORD milliseconds) {
  const com::Handle process = openProcess(processId);
  return !process || WaitForSingleObject(process.get(), milliseconds) == WAIT_OBJECT_0;
}

com::Handle startDyingHost() {
  const com::Handle ready(CreateEventW(nullptr, TRUE, FALSE, L"VordaneProbeHostReady"));
  ResetEvent(ready.get());
  std::wstring line = L"\"" + serverPath().substr(0, serverPath().rfind(L'\\') + 1) + L"dyinghost.exe\"";
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION host{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &host))
    return {};
  com::Handle process(host.hProcess);
  const com::Handle thread(host.hThread);
  return WaitForSingleObject(ready.get(), 30000) == WAIT_OBJECT_0 ? std::move(process) : com::Handle{};
}

std::wstring machineValue(const std::wstring& key, REGSAM view, const wchar_t* name) {
  const com::RegistryKey opened = openKey(key, view);
  std::array<wchar_t, 1024> buffer{};
  DWORD bytes = sizeof buffer - sizeof(wchar_t);
  if (!opened || RegQueryValueExW(opened.get(), name, nullptr, nullptr,
                                  reinterpret_cast<BYTE*>(buffer.data()), &bytes) != ERROR_SUCCESS)
    return {};
  return buffer.data();
}

bool machineKeyExists(const std::wstring& key, REGSAM view) {
  return static_cast<bool>(openKey(key, view));
}

}  // namespace vordane::test

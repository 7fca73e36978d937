// A screen reader in another process: the test program itself, started with a question about the window,
// whose answer it leaves in a file.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleacc.h>

#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>

#include "click/windows/ear.h"
#include "click/windows/eye.h"

namespace vordane::window::testing {

class OutsideEar {
 public:
  // Waits for the end of another process and serves this thread's messages meanwhile.
  using Wait = std::function<void(HANDLE process)>;

  // As a message loop does.
  static void pumping(HANDLE process) {
    while (MsgWaitForMultipleObjects(1, &process, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
      MSG message;
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
  }
  // As a thread does that waits for the answer to a call of its own.
  static void calling(HANDLE process) {
    DWORD which = 0;
    while (CoWaitForMultipleHandles(0, INFINITE, 1, &process, &which) != S_OK) continue;
  }

  // The answer to `question`, in UTF-8: "tree" with how many children of each part are told, "press" with the
  // beginning of a button's name, "row" with the number of one.
  static std::string asks(HWND window, const std::string& question, const std::string& about,
                          const Wait& wait = pumping) {
    char folder[MAX_PATH], file[MAX_PATH], program[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    GetTempFileNameA(folder, "ear", 0, file);
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string line = "\"" + std::string(program) + "\" --ear \"" + file + "\" " +
                       std::to_string(reinterpret_cast<ULONG_PTR>(window)) + " " + question + " \"" + about +
                       "\"";
    STARTUPINFOA start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
      throw std::runtime_error("no second process");
    wait(process.hProcess);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    std::string answer;
    if (std::FILE* read = std::fopen(file, "rb")) {
      char piece[4096];
      for (std::size_t got; (got = std::fread(piece, 1, sizeof piece, read)) > 0;) answer.append(piece, got);
      std::fclose(read);
    }
    DeleteFileA(file);
    return answer;
  }

  // For the program's main: true when it was started as the second process and has done its work.
  static bool served(int count, char** words) {
    if (count != 6 || std::string(words[1]) != "--ear") return false;
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const auto window = reinterpret_cast<HWND>(static_cast<ULONG_PTR>(std::stoull(words[3])));
    const std::string answer = click::utf8(answerTo(window, words[4], words[5]));
    if (std::FILE* write = std::fopen(words[2], "wb")) {
      std::fwrite(answer.data(), 1, answer.size(), write);
      std::fclose(write);
    }
    CoUninitialize();
    return true;
  }

 private:
  static std::wstring answerTo(HWND window, const std::string& question, const std::string& about) {
    const click::Ear part = click::Ear::at(window);
    if (question == "tree") return part.told(std::stol(about));
    if (question == "row") return part.child(std::stol(about)).told(10);
    if (question == "press")
      return std::to_wstring(static_cast<unsigned long>(
          part.find(ROLE_SYSTEM_PUSHBUTTON, std::wstring(about.begin(), about.end())).act()));
    return L"?";
  }
};

}  // namespace vordane::window::testing

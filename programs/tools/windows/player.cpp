#include "player.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <string>

#include "click/windows/eye.h"
#include "click/windows/hand.h"
#include "doctor_checks.h"
#include "kit/windows/running_programs.h"
#include "lines.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"
#include "platform/windows/window/children.h"
#include "text/utf8.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using replay::Cue;

constexpr DWORD betweenLooks = 15;  // milliseconds
constexpr DWORD endsWhenAsked = 5000, endsAtMost = 10000;

std::string shown(const fs::path& path) {
  return text::toUtf8(toText(path));
}

// --- settings

const std::wstring settings = L"Software\\VB and VBA Program Settings\\";
const std::wstring ofWindow = settings + L"VORDANE", putAside = settings + L"VORDANE put aside for a play";

bool keyExists(const std::wstring& name) {
  com::RegistryKey key;
  return RegOpenKeyExW(HKEY_CURRENT_USER, name.c_str(), 0, KEY_READ, key.put()) == ERROR_SUCCESS;
}

void copyKey(const std::wstring& from, const std::wstring& to) {
  com::RegistryKey source, target;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, from.c_str(), 0, KEY_READ, source.put()) != ERROR_SUCCESS) return;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, to.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, target.put(),
                      nullptr) != ERROR_SUCCESS ||
      RegCopyTreeW(source.get(), nullptr, target.get()) != ERROR_SUCCESS)
    throw ToolError("this user's settings can't be put aside");
}

// The add-in's settings of this user are those of the play, until it is over. Those of a play that was broken
// off are put back by the next one.
class OwnSettings {
 public:
  OwnSettings(const PlayPlace& place, bool identifiers) {
    putBack();
    RegDeleteTreeW(HKEY_CURRENT_USER, putAside.c_str());
    com::RegistryKey made;  // also where there was none before: it says that a play is under way
    if (RegCreateKeyExW(HKEY_CURRENT_USER, (putAside + L"\\Kept").c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                        nullptr, made.put(), nullptr) != ERROR_SUCCESS)
      throw ToolError("this user's settings can't be put aside");
    copyKey(ofWindow, putAside + L"\\Kept");
    RegDeleteTreeW(HKEY_CURRENT_USER, ofWindow.c_str());
    windows::RegistrySettings own;
    own.write(u"VORDANE", u"Trace", u"On", u"1");
    own.write(u"VORDANE", u"Trace", u"Folder", toText(place.trace()));
    if (identifiers) own.write(u"VORDANE", u"Trace", u"Identifiers", u"1");
  }
  ~OwnSettings() { putBack(); }
  OwnSettings(const OwnSettings&) = delete;
  OwnSettings& operator=(const OwnSettings&) = delete;

 private:
  static void putBack() {
    if (!keyExists(putAside)) return;
    RegDeleteTreeW(HKEY_CURRENT_USER, ofWindow.c_str());
    com::RegistryKey kept;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, (putAside + L"\\Kept").c_str(), 0, KEY_READ, kept.put()) ==
        ERROR_SUCCESS) {
      DWORD keys = 0, values = 0;
      RegQueryInfoKeyW(kept.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                       nullptr, nullptr, nullptr);
      if (keys + values > 0) copyKey(putAside + L"\\Kept", ofWindow);
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, putAside.c_str());
  }
};

// The version that the play's suite has among those of this user, until it is over.
class OwnVersion {
 public:
  explicit OwnVersion(const PlayPlace& place) {
    windows::RegistrySettings own;
    const std::u16string version = toText(place.suite().root.filename());
    if (keyExists(name_) && !own.read(u"QUILMAR32", version, mark))
      throw ToolError("a suite of the version " + std::string(PlayPlace::version) +
                      " is installed, which is the version of a play");
    own.write(u"QUILMAR32", version, mark, u"1");
    own.write(u"QUILMAR32", version, u"InstallPath", toText(place.suite().root) + u"\\");
    own.write(u"QUILMAR32", version, u"QUILMAR32", version);
  }
  ~OwnVersion() { RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str()); }
  OwnVersion(const OwnVersion&) = delete;
  OwnVersion& operator=(const OwnVersion&) = delete;

 private:
  static constexpr std::u16string_view mark = u"Play";
  const std::wstring name_ = settings + L"QUILMAR32\\" + fs::path(PlayPlace::version).wstring();
};

// --- processes

void append(std::wstring& line, const std::wstring& argument) {
  if (!line.empty()) line += L' ';
  line += L'"';
  std::size_t slashes = 0;
  for (const wchar_t letter : argument) {
    if (letter == L'"') line.append(slashes + 1, L'\\');
    slashes = letter == L'\\' ? slashes + 1 : 0;
    line += letter;
  }
  line.append(slashes, L'\\');
  line += L'"';
}

// A program of the play; it ends with this object.
class Running {
 public:
  Running(const fs::path& file, const std::vector<std::wstring>& arguments, const fs::path& folder,
          HANDLE output = nullptr) {
    std::wstring line;
    append(line, file.wstring());
    for (const std::wstring& argument : arguments)
      argument.starts_with(L"-") || argument.starts_with(L"/") ? void(line += L" " + argument)
                                                               : append(line, argument);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    if (output != nullptr) {
      start.dwFlags = STARTF_USESTDHANDLES;
      start.hStdOutput = start.hStdError = output;
    }
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, output != nullptr, CREATE_NO_WINDOW,
                        nullptr, folder.c_str(), &start, &started))
      throw ToolError(shown(file) + " can't be started. Name the folder of the programs with --programs");
    CloseHandle(started.hThread);
    process_.reset(started.hProcess);
    number_ = started.dwProcessId;
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    if (runs()) kit::endProgram(number_, endsWhenAsked, endsAtMost);
  }
  bool runs(DWORD milliseconds = 0) const {
    return WaitForSingleObject(process_.get(), milliseconds) == WAIT_TIMEOUT;
  }
  void awaitIdle() const { WaitForInputIdle(process_.get(), endsAtMost); }
  DWORD number() const { return number_; }

 private:
  com::Handle process_;
  DWORD number_ = 0;
};

// Another one would answer in the place of the one that is played with.
void refuseOthers(const PlayPlace& place) {
  for (const auto& [number, name] : kit::runningPrograms()) {
    const bool one =
        _wcsicmp(name.c_str(), L"VORDANE.EXE") == 0 || _wcsicmp(name.c_str(), L"Zulsim.exe") == 0;
    if (!one) continue;
    const std::wstring file = kit::fileOf(number);
    if (!kit::liesBelow(file, place.folder))
      throw ToolError(shown(file.empty() ? fs::path(name) : fs::path(file)) +
                      " runs. End it, and play again");
    kit::endProgram(number, endsWhenAsked, endsAtMost);
  }
}

// A class that nobody has registered on this workstation is, as long as this object is there. One that is
// registered stays what it is: the program that serves it is started beforehand.
class Registered {
 public:
  Registered(const char16_t* progId, const fs::path& program) : program_(program) {
    if (thisWorkstation()->registered(progId)) return;
    run(L"/RegServer");
    registered_ = true;
  }
  ~Registered() {
    if (registered_) run(L"/UnregServer");
  }
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;

 private:
  void run(const wchar_t* what) const {
    const Running program(program_, {what}, program_.parent_path());
    program.runs(60000);
  }
  fs::path program_;
  bool registered_ = false;
};

// Once for all plays in this place: the file of a program that has just ended may still be held.
void bring(const fs::path& from, const fs::path& to) {
  if (fs::exists(to)) return;
  std::error_code failure;
  fs::copy_file(from, to, failure);
  if (failure)
    throw ToolError(shown(from) + " can't be copied. Name the folder of the programs with --programs");
}

// --- the new trace, as it grows

class Growing {
 public:
  explicit Growing(fs::path folder) : folder_(std::move(folder)) {}

  // The whole lines that have come since the last time.
  std::vector<std::string> lines() {
    std::vector<std::string> whole;
    while (readOn(whole)) {
    }
    return whole;
  }

 private:
  // Whether there is another file to go on with.
  bool readOn(std::vector<std::string>& whole) {
    const std::string next = nextFile();
    std::ifstream in(folder_ / toPath(file_.empty() ? next : file_), std::ios::binary);
    if (file_.empty()) file_ = next;
    if (file_.empty()) return false;
    in.seekg(static_cast<std::streamoff>(read_));
    const std::string more{std::istreambuf_iterator<char>(in), {}};
    std::size_t from = 0;
    for (std::size_t end; (end = more.find('\n', from)) != std::string::npos; from = end + 1)
      whole.push_back(more.substr(from, end - from));
    read_ += from;
    if (next == file_ || next.empty()) return false;
    file_ = next;
    read_ = 0;
    return true;
  }
  // The one behind the file that is read, else the last.
  std::string nextFile() const {
    std::string next;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      const std::string name = shown(entry.path().filename());
      if (name > file_ && (next.empty() || name < next)) next = name;
    }
    return next;
  }

  fs::path folder_;
  std::string file_;
  std::size_t read_ = 0;
};

// --- what a person does

class Desk {
 public:
  explicit Desk(DWORD addin) : eye_([addin](DWORD process) { return process == addin; }) {}

  // False as long as it can't be done.
  bool does(const Cue& cue) const {
    if (cue.kind == Cue::Kind::box) return answers(static_cast<int>(cue.which));
    const HWND frame = eye_.frame();
    if (frame == nullptr || eye_.box() != nullptr) return false;
    const auto which = static_cast<WPARAM>(cue.which);
    if (cue.what == "close") return PostMessageW(frame, WM_CLOSE, 0, 0) != FALSE;
    if (cue.what == "language")
      return PostMessageW(frame, WM_SYSCOMMAND, window::win32::languageCommand(static_cast<UINT>(which)),
                          0) != FALSE;
    if (!IsWindowEnabled(frame)) return false;
    if (cue.what == "button") return presses(frame, cue.which);
    if (cue.what == "key") return PostMessageW(frame, WM_KEYDOWN, which, 1) != FALSE;
    if (cue.what == "exchange") return chooses(frame, which);
    return cue.what == "heading" && clicks(static_cast<int>(cue.which));
  }

 private:
  bool answers(int button) const {
    const HWND box = eye_.box();
    return box != nullptr && click::answerBox(box, button);
  }
  bool presses(HWND frame, std::int64_t action) const {
    for (const auto& button : window::win32::buttonActions) {
      if (static_cast<std::int64_t>(button.action) != action) continue;
      const HWND child = GetDlgItem(frame, button.id);
      return click::takesInput(child) && PostMessageW(frame, WM_COMMAND, MAKEWPARAM(button.id, BN_CLICKED),
                                                      reinterpret_cast<LPARAM>(child)) != FALSE;
    }
    return false;
  }
  static bool chooses(HWND frame, WPARAM which) {
    const HWND list = GetDlgItem(frame, window::win32::idExchange);
    if (!click::takesInput(list)) return false;
    SendMessageW(list, CB_SETCURSEL, which, 0);
    return PostMessageW(frame, WM_COMMAND, MAKEWPARAM(window::win32::idExchange, CBN_SELENDOK),
                        reinterpret_cast<LPARAM>(list)) != FALSE;
  }
  bool clicks(int column) const {
    const HWND headings = eye_.heading();
    if (headings == nullptr) return false;
    const RECT place = click::placeOfHeading(headings, column);
    SetForegroundWindow(GetAncestor(headings, GA_ROOT));
    return place.right > place.left &&
           click::pressOn(headings, {(place.left + place.right) / 2, (place.top + place.bottom) / 2});
  }

  click::Eye eye_;
};

com::File outputFile(const fs::path& path) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return com::File(
      CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr));
}

// The play's programs and what is under way.
class Player {
 public:
  Player(const replay::Recording& recording, const replay::Play& play, const PlayPlace& place,
         int patienceSeconds)
      : place_(place),
        patience_(static_cast<ULONGLONG>(patienceSeconds) * 1000),
        trace_(place.trace()),
        conductor_(recording, play.cues, play.playedTo) {}

  // Until it is over, goes otherwise, or nothing more comes.
  std::optional<replay::Difference> follow(const Running& addin) {
    const Desk desk(addin.number());
    std::optional<Cue> cue;
    ULONGLONG last = GetTickCount64();
    for (bool ended = false;;) {
      const bool runs = addin.runs();
      const std::vector<std::string> lines = trace_.lines();
      for (const std::string& line : lines) conductor_.heard(line);
      if (conductor_.difference() || conductor_.over()) return conductor_.difference();
      if (ended) return conductor_.missing();
      if (!cue) cue = conductor_.due();
      const bool done = cue && does(desk, *cue);
      if (done) cue.reset();
      if (done || !lines.empty()) last = GetTickCount64();
      if (GetTickCount64() - last > patience_) return conductor_.missing();
      ended = !runs;  // what it wrote last is read once more
      if (!done) Sleep(betweenLooks);
    }
  }

 private:
  bool does(const Desk& desk, const Cue& cue) const {
    if (cue.kind != Cue::Kind::word) return desk.does(cue);
    writeFile(place_.stage() / toPath(cue.what), {});
    return true;
  }

  const PlayPlace& place_;
  ULONGLONG patience_;
  Growing trace_;
  replay::Conductor conductor_;
};

std::optional<replay::Difference> playByHost(Player& player, const PlayPlace& place) {
  const SuiteLayout suite = place.suite();
  const Registered registered(u"Vordane10013.cOLELayer", suite.program());
  const Running addin(suite.program(), {L"-Embedding"}, suite.addins());
  addin.awaitIdle();
  const com::File output = outputFile(place.hostLines());
  const Running host(suite.host(), {place.script().wstring()}, place.stage(), output.get());
  auto difference = player.follow(addin);
  writeFile(place.stage() / replay::endWord, {});
  host.runs(endsAtMost);
  addin.runs(endsAtMost);
  return difference;
}

std::optional<replay::Difference> playByHand(Player& player, const replay::Play& play,
                                             const PlayPlace& place) {
  const SuiteLayout suite = place.suite();
  const std::wstring exchange = fs::path(text::fromUtf8(play.exchange)).wstring();
  const std::vector<std::wstring> arguments =
      exchange.empty() ? std::vector<std::wstring>{} : std::vector{exchange};
  // Where no exchange server was to be had, none is found here either.
  if (!play.simulated) return player.follow(Running(suite.program(), arguments, suite.addins()));
  const Registered registered(u"CalderinProj30001.cPBXOLE", place.simulator());
  const Running simulator(place.simulator(), {place.scenario().wstring()}, place.stage());
  simulator.awaitIdle();
  return player.follow(Running(suite.program(), arguments, place.stage()));
}

}  // namespace

std::filesystem::path ownProgram() {
  return {windows::executablePath()};
}

std::optional<replay::Difference> playHere(const replay::Recording& recording, const replay::Play& play,
                                           const PlayPlace& place, const PlayPrograms& programs,
                                           int patienceSeconds) {
  refuseOthers(place);
  bring(programs.addin, place.suite().program());
  bring(programs.host, place.suite().host());
  bring(programs.simulator, place.simulator());
  const OwnVersion version(place);
  const OwnSettings own(place, play.identifiersShown);
  Player player(recording, play, place, patienceSeconds);
  return replay::hosted(recording) ? playByHost(player, place) : playByHand(player, play, place);
}

}  // namespace vordane::tools

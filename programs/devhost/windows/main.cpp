// devhost.exe: runs one script of the development host and prints what happens.
//
//   devhost.exe [--reports DIRECTORY] [--times] SCRIPT
//   devhost.exe --help | --version
//
// Exit code: 0 the script ran to its end, 1 wrong usage, 2 the script or its scenario is wrong, 3 a call
// failed, 4 a notification that was waited for did not come (or one came that should not have).
#include <windows.h>
// shellapi.h needs windows.h before it.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "devhost/core/interpreter.h"
#include "platform/dao/dao_engine.h"
#include "platform/engine_choice.h"
#include "platform/sqlite/engine.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/services/console_output.h"
#include "platform/windows/services/services.h"
#include "startup/databases.h"
#include "text/numbers.h"
#include "text/utf8.h"
#include "zulsim/core/files.h"
#include "zulsim/windows/timers.h"

namespace vordane::devhost {
namespace {

constexpr const char* usage =
    "usage: devhost [--reports DIRECTORY] [--times] SCRIPT\n"
    "       devhost --help | --version\n";
constexpr const char* help =
    "usage: devhost [--reports DIRECTORY] [--times] SCRIPT\n"
    "       devhost --help | --version\n\n"
    "Hosts the fault display as SCRIPT says and prints every notification.\n"
    "  --reports DIRECTORY  printed reports go there, else beside their layout\n"
    "  --times              each line begins with its time\n\n"
    "Exit code: 0 done, 1 wrong usage, 2 wrong script, 3 a call failed, 4 a wait was not met.";

void printLine(std::string_view line) {
  const std::string whole = std::string(line) + '\n';
  if (windows::isConsole(stdout)) return windows::writeConsole(stdout, whole);
  std::fwrite(whole.data(), 1, whole.size(), stdout);
  std::fflush(stdout);  // whoever follows sees each line as it comes
}

class WindowsEnvironment : public Environment {
 public:
  WindowsEnvironment(bool times, std::u16string wordFolder)
      : times_(times), wordFolder_(std::move(wordFolder)) {}

  void after(int milliseconds, std::function<void()> step) override {
    timers_.after(milliseconds, std::move(step));
  }
  void pause(int milliseconds) override {
    com::serveMessagesUntil([] { return false; }, milliseconds);
  }
  void log(std::u16string_view) override {}  // the trace shows the simulator's calls
  bool taken(std::u16string_view word) override { return files::takeWord(wordFolder_, word); }
  void give(std::u16string_view word) override { files::giveWord(wordFolder_, word); }
  void vanish() override { TerminateProcess(GetCurrentProcess(), 1); }
  automation::ObjectRef create(std::u16string_view progId) override { return creator_.create(progId); }

  bool waitUntil(const std::function<bool()>& done, int milliseconds) override {
    constexpr int longWait = 60 * 60 * 1000;
    if (milliseconds >= 0) return com::serveMessagesUntil(done, milliseconds);
    while (!com::serveMessagesUntil(done, longWait)) {
    }
    return true;
  }

  void print(std::string_view line) override {
    if (!times_) return printLine(line);
    SYSTEMTIME now;
    GetLocalTime(&now);
    const std::u16string time =
        text::decimalPadded(now.wHour, 2) + u":" + text::decimalPadded(now.wMinute, 2) + u":" +
        text::decimalPadded(now.wSecond, 2) + u"." + text::decimalPadded(now.wMilliseconds, 3);
    printLine(text::toUtf8(time) + " " + std::string(line));
  }

  std::u16string now() override {
    SYSTEMTIME time;
    GetLocalTime(&time);
    return text::decimalPadded(time.wYear, 4) + u"-" + text::decimalPadded(time.wMonth, 2) + u"-" +
           text::decimalPadded(time.wDay, 2) + u" " + text::decimalPadded(time.wHour, 2) + u":" +
           text::decimalPadded(time.wMinute, 2);
  }

  platform::ObjectCreator& creator() { return creator_; }

 private:
  bool times_;
  std::u16string wordFolder_;
  windows::ComObjectCreator creator_;
  zulsim::Timers timers_;
};

struct Options {
  std::u16string script, reports;
  bool times = false, good = true;
};

Options optionsOf(const std::vector<std::u16string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == u"--times")
      options.times = true;
    else if (arguments[i] == u"--reports" && i + 1 < arguments.size())
      options.reports = arguments[++i];
    else if (options.script.empty() && !arguments[i].starts_with(u"--"))
      options.script = arguments[i];
    else
      options.good = false;
  }
  options.good = options.good && !options.script.empty();
  return options;
}

std::vector<std::u16string> programArguments() {
  int count = 0;
  LPWSTR* const values = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::u16string> arguments;
  for (int i = 1; values != nullptr && i < count; ++i) arguments.emplace_back(com::fromWide(values[i]));
  LocalFree(values);
  return arguments;
}

int runScript(const Options& options) {
  const auto bytes = files::readFile(options.script);
  if (!bytes) {
    std::fputs(
        ("devhost: " + text::toUtf8(options.script) + ": can't be read. Check the path of the script\n")
            .c_str(),
        stderr);
    return static_cast<int>(Outcome::scriptWrong);
  }
  const ParsedScript parsed = parseScript(*bytes);
  if (!parsed.problems.empty()) {
    std::fputs(text::toUtf8(lines::listing(options.script, parsed.problems)).c_str(), stderr);
    return static_cast<int>(Outcome::scriptWrong);
  }
  com::Apartment apartment;
  com::setErrorSource(u"devhost");
  WindowsEnvironment environment(options.times, files::besideFile(options.script, {}, {}));
  const auto engine = database::makeEngineChoice(
      dao::makeEngine(startup::databases, environment.creator()),
      sqlite::makeEngine(startup::databases, {windows::isOnNetworkDrive}), {windows::isHeldByOthers});
  Interpreter interpreter(environment, {options.reports, {}, engine.get()});
  return static_cast<int>(interpreter.run(parsed.statements));
}

}  // namespace
}  // namespace vordane::devhost

int main() {
  using namespace vordane::devhost;
  vordane::windows::loadFromSystemOnly();
  _setmode(_fileno(stdout), _O_BINARY);
  try {
    const auto arguments = programArguments();
    if (arguments.size() == 1 && arguments[0] == u"--help") return printLine(help), 0;
    if (arguments.size() == 1 && arguments[0] == u"--version")
      return printLine("devhost " VORDANE_VERSION), 0;
    const Options options = optionsOf(arguments);
    if (options.good) return runScript(options);
    std::fputs("devhost: a script, and nothing but the options it knows, is needed\n", stderr);
    std::fputs(usage, stderr);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "devhost: %s\n", failure.what());
  }
  return 1;
}

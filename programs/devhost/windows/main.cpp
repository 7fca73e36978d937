// devhost.exe: runs one script of the development host and prints what happens. devhost --help tells
// what it takes and what its exit codes mean.
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <memory>
#include <string>

#include "devhost/core/interpreter.h"
#include "options/options.h"
#include "platform/dao/dao_engine.h"
#include "platform/engine_choice.h"
#include "platform/sqlite/engine.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/services/console_output.h"
#include "platform/windows/services/services.h"
#include "startup/databases.h"
#include "text/dates.h"
#include "text/utf8.h"
#include "zulsim/core/files.h"
#include "zulsim/windows/timers.h"

namespace vordane::devhost {
namespace {

constexpr int wrongUsage = 1;
constexpr std::size_t toTheMinute = 16;  // of the letters of a moment

void printLine(std::string_view line) {
  windows::write(stdout, std::string(line) + '\n');
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
    printLine(text::toUtf8(windows::timeOfLine()) + " " + std::string(line));
  }

  std::u16string now() override {
    const platform::LocalTime now = windows::SystemClock().now();
    return text::isoText(now.year, now.month, now.day, now.hour, now.minute, now.second)
        .substr(0, toTheMinute);
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
  bool times = false;
};

int runScript(const Options& options) {
  const auto bytes = files::readFile(options.script);
  if (!bytes) {
    windows::write(stderr, "devhost: " + text::toUtf8(options.script) +
                               ": can't be read. Check the path of the script\n");
    return static_cast<int>(Outcome::scriptWrong);
  }
  const ParsedScript parsed = parseScript(*bytes);
  if (!parsed.problems.empty()) {
    windows::write(stderr, text::toUtf8(lines::listing(options.script, parsed.problems)));
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

int run(const options::Words& words) {
  options::Program program("devhost", "Hosts the fault display as SCRIPT says and prints every notification.",
                           wrongUsage);
  std::string script, reports;
  bool times = false;
  program.option("--reports", "DIRECTORY", reports, "printed reports go there, else beside their layout");
  program.flag("--times", times, "each line begins with its time");
  program.argument("SCRIPT", script, "the script");
  program.notes("Exit code: 0 done, 1 wrong usage, 2 wrong script, 3 a call failed, 4 a wait was not met.");
  program.runs([&] { return runScript({text::fromUtf8(script), text::fromUtf8(reports), times}); });
  const auto ending = program.read(words);
  if (!ending) return program.perform();
  windows::write(stdout, ending->output);
  windows::write(stderr, ending->errors);
  return ending->code;
}

}  // namespace
}  // namespace vordane::devhost

int main() {
  using namespace vordane;
  windows::loadFromSystemOnly();
  _setmode(_fileno(stdout), _O_BINARY);
  try {
    return devhost::run(windows::programWords());
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "devhost: %s\n", failure.what());
  }
  return 1;
}

// Zulsim.exe: the simulated exchange as an automation server of its own.
//
//   Zulsim.exe /RegServer | /UnregServer     as every automation server
//   Zulsim.exe [SCENARIO]                    started by hand: serves until it is ended; --help tells more
#include <windows.h>

#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "options/options.h"
#include "platform/command_line.h"
#include "platform/registration.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/com/class_server.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"
#include "zulsim/core/exchange_server.h"
#include "zulsim/core/files.h"
#include "zulsim/core/scenario_parser.h"
#include "zulsim/windows/timers.h"

namespace vordane::zulsim {
namespace {

constexpr int wrongUsage = 2;

std::u16string directoryOf(const std::u16string& path) {
  return path.substr(0, path.find_last_of(u"\\/") + 1);
}

class WindowsServices : public Services {
 public:
  WindowsServices(std::u16string logFile, std::u16string wordFolder)
      : logFile_(std::move(logFile)), wordFolder_(std::move(wordFolder)) {}

  void after(int milliseconds, std::function<void()> step) override {
    timers_.after(milliseconds, std::move(step));
  }
  void pause(int milliseconds) override {
    com::serveMessagesUntil([] { return false; }, milliseconds);
  }
  bool taken(std::u16string_view word) override { return files::takeWord(wordFolder_, word); }
  void give(std::u16string_view word) override { files::giveWord(wordFolder_, word); }
  void vanish() override { TerminateProcess(GetCurrentProcess(), 1); }

  void log(std::u16string_view line) override {
    windows::SystemFiles files;
    if (!files.exists(logFile_)) return;  // whoever wants a log makes the file
    files.append(logFile_, text::toUtf8(windows::timeOfLine() + u" " + std::u16string(line) + u"\r\n"));
  }

 private:
  std::u16string logFile_, wordFolder_;
  Timers timers_;
};

// A server whose scenario can't be used says so to whoever logs in, since it has no other voice.
class BrokenServer : public ExchangeServer {
 public:
  BrokenServer(std::shared_ptr<Simulation> simulation, std::u16string reason)
      : ExchangeServer(std::move(simulation)), reason_(std::move(reason)) {}

 protected:
  automation::Value invokeMember(std::size_t, automation::CallKind,
                                 std::span<automation::Argument>) override {
    throw automation::AutomationError(automation::error::exception, reason_, u"Zulsim");
  }

 private:
  std::u16string reason_;
};

std::u16string scenarioFile(const std::u16string& directory, const std::u16string& wanted) {
  if (!wanted.empty()) return wanted;
  const std::u16string own = directory + u"Zulsim.zul";
  return windows::SystemFiles().exists(own) ? own : directory + u"scenarios\\demo.zul";
}

ParsedScenario load(const std::u16string& file) {
  const auto bytes = files::readFile(file);
  if (bytes) return parseScenario(*bytes);
  return {{}, {{0, u"the scenario can't be read"}}};
}

registration::Server registrationOf(const std::u16string& path) {
  const automation::ClassTable& table = ExchangeServer::classTable();
  return {path,
          {{std::u16string(table.progId),
            text::fromUtf8(table.clsid),
            std::u16string(table.description),
            {},
            {}}},
          std::nullopt};
}

// `byHand`: started by a person, who may name the scenario and ends the program.
int serve(const std::u16string& directory, bool byHand, const std::u16string& scenario) {
  com::Apartment apartment;
  com::setErrorSource(u"Zulsim");
  const std::u16string file = scenarioFile(directory, scenario);
  WindowsServices services(directory + u"Zulsim.log", directoryOf(file));
  const ParsedScenario parsed = load(file);
  const std::u16string problems = lines::listing(file, parsed.problems);
  if (!problems.empty()) services.log(problems);
  if (!problems.empty() && byHand) {
    MessageBoxW(nullptr, com::wide(problems.c_str()), L"Zulsim", MB_OK | MB_ICONERROR);
    return wrongUsage;
  }
  const auto simulation = std::make_shared<Simulation>(parsed.scenario, services);
  com::ClassServer server(apartment);
  server.serve({{std::string(ExchangeServer::classTable().clsid), [&]() -> automation::ObjectRef {
                   if (!problems.empty()) return std::make_shared<BrokenServer>(simulation, problems);
                   return std::make_shared<ExchangeServer>(simulation);
                 }}});
  if (byHand) server.stay();
  return com::runMessageLoop();
}

void printLines(const std::string& utf8, void (*print)(std::u16string_view line)) {
  std::istringstream lines(utf8);
  for (std::string line; std::getline(lines, line);) print(text::fromUtf8(line));
}

int runByHand(const std::u16string& directory) {
  options::Program program("Zulsim", "Simulates the exchanges of a maintenance suite, as a scenario says.",
                           wrongUsage);
  std::string scenario;
  program.optionalArgument(
      "SCENARIO", scenario,
      "the file of the scenario, else Zulsim.zul beside the program, else scenarios\\demo.zul below it");
  program.notes(
      "It serves until it is ended, and writes a log when a file Zulsim.log lies beside it. Zulsim "
      "/RegServer [/JobAccount:NAME] registers it, so that automation starts it; Zulsim /UnregServer takes "
      "it away.\n"
      "Exit code: 0 ended, 1 failed, 2 wrong usage or a scenario that can't be used.");
  program.runs([&] { return serve(directory, true, text::fromUtf8(scenario)); });
  const auto ending = program.read(windows::programWords());
  if (!ending) return program.perform();
  printLines(ending->output, windows::printLine);
  printLines(ending->errors, windows::printMistake);
  return ending->code;
}

int run() {
  const std::u16string path = windows::executablePath();
  const std::u16string_view whole = com::fromWide(GetCommandLineW());
  const platform::CommandLine commandLine = platform::parseCommandLine(platform::withoutProgramName(whole));
  if (const auto asked = windows::registerAsAsked(commandLine, registrationOf(path))) return *asked;
  if (commandLine.start == platform::Start::byHand) return runByHand(directoryOf(path));
  return serve(directoryOf(path), false, {});
}

}  // namespace
}  // namespace vordane::zulsim

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  vordane::windows::loadFromSystemOnly();
  try {
    return vordane::zulsim::run();
  } catch (const std::exception&) {
    return 1;  // whoever starts it through automation gets the creation's error
  }
}

#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

#include "commands.h"
#include "lines.h"
#include "setup.h"
#include "setup_system.h"

namespace vordane::tools {
namespace {

constexpr long usualWait = 60;

// What the command lines of both say.
struct Options {
  std::string root, package, language;
  std::optional<std::string> words, log;
  std::optional<long> wait;
  bool thisUser = false, demonstration = false, crashDumps = false, everything = false;
};

// What is told goes to whoever reads, and to the log.
class Account {
 public:
  void openLog(const std::string& file) {
    log_.open(toPath(file), std::ios::binary | std::ios::app);
    if (!log_) std::cerr << "vordane-tools: " << file << ": the log can't be written\n";
  }
  void tell(const std::string& line) {
    std::cout << line << '\n' << std::flush;
    if (log_.is_open()) log_ << line << "\r\n" << std::flush;
  }

 private:
  std::ofstream log_;
};

std::filesystem::path rootOf(const Options& given) {
  const std::filesystem::path whole = std::filesystem::absolute(toPath(given.root)).lexically_normal();
  return whole.has_filename() ? whole : whole.parent_path();
}

std::chrono::seconds waitOf(const Options& given) {
  return std::chrono::seconds(given.wait.value_or(usualWait));
}

// The outcome as exit code; a failure says where it stopped.
template <typename Step>
int outcomeOf(Account& account, Step step) {
  try {
    step([&](const std::string& line) { account.tell(line); });
    return 0;
  } catch (const SetupFailure& failure) {
    account.tell(failure.what());
    return static_cast<int>(failure.outcome());
  } catch (const std::exception& failure) {
    account.tell(failure.what());
    return static_cast<int>(Outcome::failed);
  }
}

int install(const Options& given) {
  Account account;
  if (given.log) account.openLog(*given.log);
  InstallRequest request;
  request.root = rootOf(given);
  request.package = toPath(given.package);
  request.language = given.language;
  request.everybody = !given.thisUser;
  request.demonstration = given.demonstration;
  request.wait = waitOf(given);
  request.version = versionOf(options::version()).value_or(Version{});
  request.crashDumps = given.crashDumps;
  if (given.words) {
    request.words = wordsNamed(*given.words);
    if (!request.words) throw ToolError("--words is x64 or x86, not " + *given.words);
  }
  const auto system = setupSystem();
  return outcomeOf(account, [&](const Tell& tell) { install(request, *system, tell); });
}

int uninstall(const Options& given) {
  Account account;
  if (given.log) account.openLog(*given.log);
  const auto system = setupSystem();
  return outcomeOf(account, [&](const Tell& tell) {
    uninstall(RemovalRequest{rootOf(given), given.everything, waitOf(given)}, *system, tell);
  });
}

void declareCommon(options::Command& command, Options& given) {
  command.argument("SUITE_DIR", given.root, "the version directory");
  command.option("--wait", "SECONDS", given.wait, "how long to wait for programs that are in use, else 60");
  command.option("--log", "FILE", given.log, "what is told goes there too");
}

}  // namespace

void declareInstall(options::Command& command) {
  const auto given = std::make_shared<Options>();
  declareCommon(command, *given);
  command.option("--package", "DIR", given->package, "what the installer has unpacked");
  command.exactlyOne({"--package"});
  command.option("--language", "NAME", given->language, "the language of a set that is new, else en");
  command.option("--words", "x64|x86", given->words,
                 "the word size; without it that of the system, and x86 where databases are Access files");
  command.flag("--this-user", given->thisUser, "registered for this user alone");
  command.flag("--demonstration", given->demonstration, "with the simulated exchange");
  command.flag("--crash-dumps", given->crashDumps,
               "the system keeps an image of the add-in's memory when it crashes");
  command.runs([given] { return install(*given); });
}

void declareUninstall(options::Command& command) {
  const auto given = std::make_shared<Options>();
  declareCommon(command, *given);
  command.flag("--everything", given->everything, "stored faults, logs, jobs and settings go too");
  command.runs([given] { return uninstall(*given); });
}

}  // namespace vordane::tools

// What the command line of a program takes, declared once: reading it, help, usage and the sentences about
// mistakes follow from that, in one style for all programs.
//
// Options have two dashes and may stand before, between or behind the other arguments; `--` ends them. A
// value stands behind its option or, joined to it, behind `=`. An option given twice counts as it was given
// last.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::options {

using Words = std::vector<std::string>;  // UTF-8, behind the program's own name
using Names = std::vector<std::string>;

// The version of all these programs.
std::string_view version();

// How a program ends without doing anything: what it prints, whole lines, and its exit code.
struct Ending {
  int code = 0;
  std::string output, errors;

  bool operator==(const Ending&) const = default;
};

// What a program, or one of its commands, takes. Every variable that is declared here must live until the
// command line has been read, and keeps its value when the argument is not given.
class Command {
 public:
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  ~Command();

  // Arguments without a name of their own on the command line, in their order. `what` names the thing ("the
  // fault database"). The first must be given, the second may be, the third is one or more and stands last.
  void argument(const std::string& name, std::string& value, const std::string& what);
  void optionalArgument(const std::string& name, std::string& value, const std::string& what);
  void arguments(const std::string& name, Words& values, const std::string& what);

  // `name` with its dashes; `value` is the word for what stands behind it; `says` is what help says of it.
  void flag(const std::string& name, bool& given, const std::string& says);
  void option(const std::string& name, const std::string& value, std::string& given, const std::string& says);
  void option(const std::string& name, const std::string& value, std::optional<std::string>& given,
              const std::string& says);
  void option(const std::string& name, const std::string& value, std::optional<long>& given,
              const std::string& says);  // decimal, not negative
  void options(const std::string& name, const std::string& value, Words& given, const std::string& says);

  // Of the declared options with these names: one at most, exactly one, `name` only together with `other`.
  void oneAtMost(const Names& names);
  void exactlyOne(const Names& names);
  void needs(const std::string& name, const std::string& other);

  // Text below the table of options.
  void notes(const std::string& text);

  // A command of this program, or of this command. Whoever has commands needs one of them and takes nothing
  // else.
  Command& command(const std::string& name, const std::string& does);
  // What is done when this is what the command line asks for; answers the exit code.
  void runs(std::function<int()> deed);

 protected:
  struct Parts;  // all that knows the library behind this
  explicit Command(std::unique_ptr<Parts> parts);
  static std::unique_ptr<Parts> partsOf(const std::string& program, const std::string& does);
  Parts& parts() const { return *parts_; }

 private:
  std::unique_ptr<Parts> parts_;
};

// A program: what it and its commands take. `name` is what a person types; `wrongUsage` is the exit code
// after a mistake.
class Program : public Command {
 public:
  Program(const std::string& name, const std::string& does, int wrongUsage);

  // --help (or -h, also behind a command), --version and mistakes end the program; else the deed of what was
  // chosen runs within `perform`.
  std::optional<Ending> read(const Words& words);
  int perform();

 private:
  int wrongUsage_;
};

}  // namespace vordane::options

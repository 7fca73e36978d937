// What the kit holds: its programs, the tests that are left out on a workstation, and what of it is to be
// run. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vordane::kit {

// A GoogleTest program of the kit.
struct Program {
  std::string words{};  // "x64" or "x86"
  std::string name{};
  std::string path{};  // below the kit's folder, with "/"
  int seconds = 0;     // the time that one run of it may take
  bool alone = false;  // each test in a process of its own
  bool operator==(const Program&) const = default;
};

// A test that the kit does not run, and why.
struct HeldBack {
  std::string program{};
  std::string tests{};  // as GoogleTest's filter: * and ?
  std::string reason{};
  bool operator==(const HeldBack&) const = default;
};

// Lines of columns parted by tabs, in the order of the members above ("whole" or "alone" for the last of a
// program); empty lines and those that begin with "#" do not count. Throws std::runtime_error with the number
// of a line that makes no sense.
std::vector<Program> parsePrograms(std::string_view text);
std::vector<HeldBack> parseHeldBack(std::string_view text);

// Whether a name fits a pattern of GoogleTest's kind: * is any text, ? any character.
bool fits(std::string_view name, std::string_view pattern);

// What somebody asked for: "x64/com_tests", "com_*", "window_test:View*.*". Without a word size both are
// meant, without tests all of them.
class Choice {
 public:
  Choice() = default;  // everything
  explicit Choice(std::vector<std::string> wishes) : wishes_(std::move(wishes)) {}
  bool takes(const Program& program) const;
  bool takes(const Program& program, std::string_view test) const;

 private:
  std::vector<std::string> wishes_{};
};

// The reason why a test is left out; empty when it is run.
std::string reasonToHold(const std::vector<HeldBack>& all, const Program& program, std::string_view test);

}  // namespace vordane::kit

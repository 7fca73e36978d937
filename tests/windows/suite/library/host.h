// A host in a process of its own, and the account that it gives of everything that reaches it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "library/program.h"
#include "library/window.h"

namespace vordane::suite {

class Host {
 public:
  // devhost.exe with the script host\NAME.txt, or with these lines.
  explicit Host(const std::string& name, Program::Station station = Program::Station::shown);
  Host(const std::string& name, const std::string& lines);

  // Until so many lines of the trace begin so; throws Failure when they don't come.
  void awaitLine(std::string_view beginning, std::size_t times = 1) const;
  // Presses the request button of its window, once it notes that it is ready (for that exchange).
  void pressRequest(const std::string& exchange = {}) const;

  int wait() const { return program_.wait(); }
  void kill() const { program_.kill(); }
  bool runs() const { return program_.runs(); }
  std::string trace() const;  // whole, when the host has ended
  std::vector<std::string> lines() const { return program_.output().lines(); }
  const Program& program() const { return program_; }

 private:
  Program program_;
};

// What differs from run to run and from place to place, masked: identifiers, the window's place, the suite's
// folder.
std::string masked(std::string_view trace);

// Whether it ends by itself with code 0, its trace line for line as in host\NAME.expected.
testing::AssertionResult endsAsExpected(const Host& host, const std::string& name);
// The same for any text.
testing::AssertionResult isExpected(const std::string& got, const std::string& file);

}  // namespace vordane::suite

// A test with an installed suite of its own: the add-in and the simulated exchange registered, a fresh
// database, nothing of an earlier test. Afterwards none of its programs runs.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "library/database.h"
#include "library/exchange.h"
#include "library/host.h"
#include "library/layout.h"
#include "library/program.h"
#include "library/settings.h"
#include "library/text_files.h"
#include "library/waiting.h"
#include "library/window.h"

namespace vordane::suite {

class InstalledSuite : public testing::Test {
 protected:
  void SetUp() override { install("en"); }
  void TearDown() override;

  static void install(const std::string& language);
};

// What the programs answer to the switch, expected to be 0.
void registerProgram(const Path& program);
void unregisterProgram(const Path& program);

// Starts the add-in by hand, in the simulator's folder, so that it works with the simulated exchange.
class StartedByHand {
 public:
  explicit StartedByHand(const std::wstring& exchange = L"PBX-1", const Path& file = layout().addin())
      : program(file, {exchange}, layout().exchange), window(&program) {}
  // Presses the request button and waits until the list and the lamps have come. The exchange keeps its log.
  void fetch();

  Program program;
  Window window;
};

// Nothing of the installed suite stays: programs, registration, settings, files. Not what was registered
// before.
void removeSuite();

// vordane-tools with these arguments: what it printed.
std::string tools(const Program::Arguments& arguments);

}  // namespace vordane::suite

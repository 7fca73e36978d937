// The tests that need a database server. Started without one, the program starts itself again beside one.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "crash/lists.h"
#include "places.h"
#include "platform/odbc/engine.h"
#include "platform/odbc/library.h"
#include "startup/databases.h"

namespace {

bool onlyLists(int count, char** arguments) {
  for (int i = 1; i < count; ++i)
    if (std::string_view(arguments[i]) == "--gtest_list_tests") return true;
  return false;
}

int runBesideServer(char** arguments) {
  const std::string script = (vordane::test::sourceFolder() / "tests/odbc/with-server.sh").string();
  std::vector<char*> words{const_cast<char*>(script.c_str())};
  while (*arguments != nullptr) words.push_back(*arguments++);
  words.push_back(nullptr);
  setenv("VORDANE_SECOND", "yes", 1);
  execv(script.c_str(), words.data());
  return 125;
}

// What killed_test.cpp kills.
int takeLists(const std::vector<std::string>& words) {
  const auto order = vordane::crash::fromArguments(words);
  vordane::odbc::Options options;
  if (order.slow) options.longestUnsavedMilliseconds = 5;  // a list is saved in many pieces
  const auto engine =
      vordane::odbc::makeEngine(vordane::startup::databases, vordane::odbc::systemLibrary(), options);
  vordane::crash::takeLists(order, *engine);
  if (order.stays) std::this_thread::sleep_for(std::chrono::minutes(5));  // nobody killed it
  return order.stays ? 2 : 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count > 1 && std::string_view(arguments[1]) == "--take-lists")
    return takeLists({arguments + 1, arguments + count});
  if (std::getenv("VORDANE_SERVER") == nullptr && !onlyLists(count, arguments))
    return runBesideServer(arguments);
  testing::InitGoogleTest(&count, arguments);
  return RUN_ALL_TESTS();
}

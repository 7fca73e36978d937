// The tests that need a database server. Started without one, the program starts itself again beside one.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "places.h"

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
  execv(script.c_str(), words.data());
  return 125;
}

}  // namespace

int main(int count, char** arguments) {
  if (std::getenv("VORDANE_SERVER") == nullptr && !onlyLists(count, arguments))
    return runBesideServer(arguments);
  testing::InitGoogleTest(&count, arguments);
  return RUN_ALL_TESTS();
}

// The test program, and the process that it kills: the same program with an order.
#include <gtest/gtest.h>

#include <iostream>

#include "crash/lists.h"

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + count);
  if (words.empty() || words.front() != "--take-lists") {
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
  }
  try {
    vordane::crash::takeLists(vordane::crash::fromArguments(words));
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "the lists could not be taken in: " << failure.what() << '\n';
    return 1;
  }
}

// The test program, and the process that it kills: the same program with an order.
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <thread>

#include "crash/lists.h"

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + count);
  if (words.empty() || words.front() != "--take-lists") {
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
  }
  try {
    const auto order = vordane::crash::fromArguments(words);
    vordane::crash::takeLists(order);
    if (order.stays) std::this_thread::sleep_for(std::chrono::minutes(5));  // nobody killed it
    return order.stays ? 2 : 0;
  } catch (const std::exception& failure) {
    std::cerr << "the lists could not be taken in: " << failure.what() << '\n';
    return 1;
  }
}

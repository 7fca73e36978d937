#include "platform/file_moves.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace vordane::platform {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// A step that fails `refusals` times in the same way.
struct Step {
  int refusals;
  std::errc how = std::errc::permission_denied;
  int attempts = 0;
  std::chrono::milliseconds waited{0};

  std::error_code run() {
    return tryPatiently(
        [this]() -> std::error_code {
          return attempts++ < refusals ? std::make_error_code(how) : std::error_code{};
        },
        [this](std::chrono::milliseconds time) { waited += time; });
  }
};

TEST(TryPatiently, WaitsForNothingAfterASuccess) {
  Step step{0};
  EXPECT_FALSE(step.run());
  EXPECT_EQ(step.attempts, 1);
  EXPECT_EQ(step.waited, 0ms);
}

TEST(TryPatiently, GoesOnAsSoonAsTheOtherProgramLetsGo) {
  for (const std::errc held :
       {std::errc::permission_denied, std::errc::device_or_resource_busy, std::errc::text_file_busy,
        std::errc::no_lock_available, std::errc::io_error}) {
    Step step{3, held};
    EXPECT_FALSE(step.run());
    EXPECT_EQ(step.attempts, 4);
    EXPECT_EQ(step.waited, 150ms);
  }
}

TEST(TryPatiently, GivesUpAfterTwoSeconds) {
  Step step{1000};
  EXPECT_EQ(step.run(), std::errc::permission_denied);
  EXPECT_EQ(step.waited, 2000ms);
  EXPECT_EQ(step.attempts, 41);
  Step just{40};
  EXPECT_FALSE(just.run());
}

TEST(TryPatiently, WhatNoWaitingMendsFailsAtOnce) {
  Step step{1000, std::errc::no_space_on_device};
  EXPECT_EQ(step.run(), std::errc::no_space_on_device);
  EXPECT_EQ(step.attempts, 1);
  EXPECT_EQ(step.waited, 0ms);
}

TEST(MoveFile, TakesTheNameOver) {
  const fs::path folder =
      fs::temp_directory_path() / ("vordane-file-moves-" + std::to_string(std::random_device()()));
  fs::create_directories(folder);
  std::ofstream(folder / "new") << "new";
  std::ofstream(folder / "name") << "an older one";
  const Pause none = [](std::chrono::milliseconds) { FAIL(); };
  EXPECT_FALSE(moveFile(folder / "new", folder / "name", none));
  EXPECT_FALSE(fs::exists(folder / "new"));
  EXPECT_EQ(fs::file_size(folder / "name"), 3U);
  EXPECT_EQ(moveFile(folder / "new", folder / "name", none), std::errc::no_such_file_or_directory);
  EXPECT_EQ(fs::file_size(folder / "name"), 3U);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace vordane::platform

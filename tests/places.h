// Where tests find what lies in the repository.
#pragma once

#include <filesystem>

namespace vordane::test {

// The repository's root, and the folder of data that only tests use. Where the tests have been carried
// elsewhere VORDANE_SOURCES names the folder that stands for the root.
std::filesystem::path sourceFolder();
std::filesystem::path dataFolder();

}  // namespace vordane::test

// Where tests find what lies in the repository.
#pragma once

#include <filesystem>

namespace vordane::test {

// The repository's root, and the folder of data that only tests use.
std::filesystem::path sourceFolder();
std::filesystem::path dataFolder();

}  // namespace vordane::test

// The type library's text as a whole: numbers and identifiers that a host was compiled against never change.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "places.h"
#include "startup/library.h"

namespace vordane {
namespace {

TEST(TypeLibrary, IsWhatHostsWereCompiledAgainst) {
  std::ifstream file(test::dataFolder() / "Vordane10013.idl", std::ios::binary);
  std::stringstream golden;
  golden << file.rdbuf();
  EXPECT_EQ(automation::idlText(startup::libraryTable()), golden.str());
}

}  // namespace
}  // namespace vordane

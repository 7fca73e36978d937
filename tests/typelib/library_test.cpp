// The type library's text as a whole, and the header for hosts in C++: numbers and identifiers that a host
// was compiled against never change.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "places.h"
#include "platform/cpp_header.h"
#include "startup/library.h"

namespace vordane {
namespace {

std::string golden(const char* name) {
  std::ifstream file(test::dataFolder() / name, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(TypeLibrary, IsWhatHostsWereCompiledAgainst) {
  EXPECT_EQ(automation::idlText(startup::libraryTable()), golden("Vordane10013.idl"));
}

TEST(TypeLibrary, TheHeaderForCppIsWhatHostsWereCompiledAgainst) {
  EXPECT_EQ(automation::cppHeaderText(startup::libraryTable()), golden("Vordane10013.h.txt"));
}

}  // namespace
}  // namespace vordane

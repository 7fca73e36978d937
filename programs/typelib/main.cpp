// Prints the interface definition of VORDANE.EXE's library, or with --header the header for hosts in C++.
#include <cstdio>
#include <cstring>

#include "platform/cpp_header.h"
#include "startup/library.h"

int main(int count, char** values) {
  using namespace vordane;
  const bool header = count > 1 && std::strcmp(values[1], "--header") == 0;
  const automation::LibraryTable& library = startup::libraryTable();
  const std::string text = header ? automation::cppHeaderText(library) : automation::idlText(library);
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
}

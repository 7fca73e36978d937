// Prints the interface definition of VORDANE.EXE's library.
#include <cstdio>

#include "startup/library.h"

int main() {
  const std::string text = vordane::automation::idlText(vordane::startup::libraryTable());
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
}

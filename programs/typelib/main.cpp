// Prints the interface definition of the library it is built with: vordane-idl > Vordane10013.idl
#include <cstdio>

#include "startup/public_classes.h"

int main() {
  const std::string text = vordane::automation::idlText(vordane::startup::libraryTable());
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
}

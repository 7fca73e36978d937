#include <cstdio>

#include "probe_library.h"

int main() {
  const std::string text = vordane::automation::idlText(vordane::test::probeLibrary());
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
}

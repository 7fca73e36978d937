// A program that loads a library by its bare name, as one must not.
#include <windows.h>

int main() {
  return LoadLibraryW(L"msftedit.dll") == nullptr;
}

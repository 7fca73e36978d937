// EvilHost.exe: a host that misbehaves, at a director's command.
#include "program.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  return vordane::hostile::runProgram(vordane::hostile::Role::host);
}

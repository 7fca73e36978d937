// The stand-in for DAO as a program of its own: DAO.DBEngine.120 for whoever creates it.
#include <windows.h>

#include <filesystem>
#include <fstream>

#include "dao/dao_fake.h"
#include "platform/command_line.h"
#include "platform/windows/com/class_server.h"
#include "platform/windows/services/services.h"

namespace vordane::fakes {
namespace {

constexpr const char* engineClass = "{6F4B0A52-7C1E-4E0B-9B53-2D7A90C3D120}";

registration::Server description() {
  const std::string_view clsid(engineClass);
  registration::Server server{windows::executablePath(), {}, {}};
  server.classes.push_back(
      {u"DAO.DBEngine.120", {clsid.begin(), clsid.end()}, u"DAO for tests", u"_DBEngine", {}});
  return server;
}

// Whoever started this server from a script finds beside it what was called wrongly.
void tellMisuse(const std::string& line) {
  std::ofstream(std::filesystem::path(windows::executablePath() + u".misuse"), std::ios::app) << line << '\n';
}

int run() {
  const platform::CommandLine line =
      platform::parseCommandLine(platform::withoutProgramName(com::fromWide(GetCommandLineW())));
  if (const auto asked = windows::registerAsAsked(line, description())) return *asked;
  com::Apartment apartment;
  com::ClassServer server(apartment);
  const auto world = std::make_shared<DaoWorld>();
  world->misused = tellMisuse;
  server.serve({{engineClass, [&] { return makeDaoEngine(world); }, false}});
  // The engine itself lives in its caller's process and is never on its way out while somebody else comes.
  server.stay();
  return com::runMessageLoop();
}

}  // namespace
}  // namespace vordane::fakes

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  return vordane::fakes::run();
}

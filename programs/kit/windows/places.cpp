#include "kit/windows/places.h"

#include <set>

#include "com/probe_library.h"
#include "platform/event_log.h"
#include "platform/registration.h"
#include "platform/windows/com/owned.h"
#include "startup/library.h"
#include "text/utf8.h"
#include "zulsim/core/exchange_server.h"

namespace vordane::kit {
namespace {

registration::Server serverOf(std::u16string progId, std::u16string clsid, std::u16string file) {
  return {std::move(file), {{std::move(progId), std::move(clsid), {}, {}, {}}}, std::nullopt};
}

registration::Server withSource(registration::Server server, std::u16string_view eventSource) {
  server.eventSource = eventSource;
  return server;
}

// The programs of the kit that register themselves. The stand-ins for DAO come under the names of the Access
// engine.
std::vector<registration::Server> servers() {
  const automation::ClassTable& exchange = zulsim::ExchangeServer::classTable();
  const std::u16string standIn = u"{6F4B0A52-7C1E-4E0B-9B53-2D7A90C3D120}";
  return {
      withSource(registration::serverOf(u"C:\\VORDANE.EXE", startup::libraryTable()), platform::eventSource),
      withSource(registration::serverOf(u"C:\\probeserver.exe", test::probeLibrary()), u"VordaneProbe"),
      serverOf(std::u16string(exchange.progId), text::fromUtf8(exchange.clsid), u"C:\\Zulsim.exe"),
      serverOf(u"DAO.DBEngine.120", standIn, u"C:\\daoserver.exe"),
      serverOf(u"DAO.DBEngine.36", standIn, u"C:\\daoserver.exe")};
}

std::set<std::u16string> classKeys() {
  std::set<std::u16string> keys;
  for (const registration::Server& server : servers())
    for (const registration::Removal& removal : registration::removals(server)) keys.insert(removal.tree);
  return keys;
}

// The same for both word sizes.
std::set<std::u16string> sourceKeys() {
  std::set<std::u16string> keys;
  for (const registration::Server& server : servers())
    if (const auto source = registration::eventSource(server)) keys.insert(source->key);
  return keys;
}

std::u16string narrow(const wchar_t* text) {
  return std::u16string(com::fromWide(text));
}

}  // namespace

std::vector<RegistryPlace> writtenPlaces() {
  std::vector<RegistryPlace> places;
  for (const View view : {View::words64, View::words32})
    for (const Hive hive : {Hive::machine, Hive::user})
      for (const std::u16string& key : classKeys())
        places.push_back({hive, view, u"Software\\Classes\\" + key});
  for (const std::u16string& key : sourceKeys()) places.push_back({Hive::machine, View::words64, key});
  const std::u16string settings = u"Software\\VB and VBA Program Settings\\";
  places.push_back({Hive::machine, View::words64, settings + u"VORDANETEST"});
  for (const std::u16string& key :
       {u"QUILMAR32\\" + narrow(ownSection), u"QUILMAR32\\" + narrow(otherSection),
        std::u16string(u"VORDANE"), std::u16string(u"VORDANE before the tests"),
        std::u16string(u"VORDANETEST")})
    for (const View view : {View::words64, View::words32})
      places.push_back({Hive::user, view, settings + key});
  return places;
}

}  // namespace vordane::kit

// What registering an automation server writes, as data: the keys below Software\Classes, for one view of
// the registry (every view gets the same). Pure; the Windows half writes and deletes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/idl.h"

namespace vordane::registration {

struct Class {
  std::u16string progId;
  std::u16string clsid;        // "{...}", upper case
  std::u16string description;  // what the registry shows for the class
  std::u16string interfaceName;
  std::u16string iid;  // empty: no dispinterface of its own
};

struct Library {
  std::u16string libid;
  std::u16string version;  // "1.0"
  std::u16string description;
};

struct Server {
  std::u16string path;         // the executable, full, not quoted
  std::vector<Class> classes;  // at least one
  std::optional<Library> library;
  std::u16string eventSource{};  // of its entries in the system's event log; empty: it writes none
};

struct Entry {
  std::u16string key;    // below Software\Classes
  std::u16string name;   // empty: the key's own value
  std::u16string value;  // REG_SZ
  bool operator==(const Entry&) const = default;
};

// The registration of a program that serves the classes of a library.
Server serverOf(std::u16string path, const automation::LibraryTable& library);

std::vector<Entry> entries(const Server& server);

// Where the system finds the texts of a server's entries in its event log: the key below HKEY_LOCAL_MACHINE,
// one for both word sizes, which no user's own registration has; the program whose resource they are
// (EventMessageFile), and the weights that it writes (TypesSupported). Nothing without entries.
struct EventSource {
  std::u16string key;
  std::u16string messageFile;
  std::uint32_t types;
  bool operator==(const EventSource&) const = default;
};
std::optional<EventSource> eventSource(const Server& server);

// The key that holds who may start the program and call it, for all of its classes: its identifier is that of
// the first class. What an administrator sets there stays when the program is registered again.
std::u16string applicationKey(const Server& server);

// The text of a LocalServer32 value: the path in quotes, since it may hold blanks.
std::u16string quoted(std::u16string_view path);

// A tree that goes when it is this server's: `evidence`'s value names the server's own path.
struct Removal {
  std::u16string tree;
  Entry evidence;
};
// In the order they are to be checked and removed: what carries no path of its own goes before its evidence.
std::vector<Removal> removals(const Server& server);

// Whether a registered value names the same program: quotes and case do not count.
bool samePath(std::u16string_view registered, std::u16string_view path);

// What may stand behind /RegServer: nothing; /JobAccount:NAME, the account or group whose jobs may start
// the program without anybody being logged on; or /ThisUser. Quotes around the whole or around the name do
// not count.
struct Request {
  std::u16string jobAccount;  // empty: none named
  bool thisUser = false;      // for nobody else, also where it could be registered for everybody
};
// Nothing for anything else.
std::optional<Request> parseRequest(std::u16string_view arguments);

}  // namespace vordane::registration

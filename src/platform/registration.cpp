#include "platform/registration.h"

#include "text/text.h"

namespace vordane::registration {
namespace {

// The system's own marshaller of pure dispatch interfaces.
constexpr std::u16string_view dispatchMarshaller = u"{00020420-0000-0000-C000-000000000046}";

std::u16string join(std::initializer_list<std::u16string_view> parts) {
  std::u16string key;
  for (const std::u16string_view part : parts) {
    if (!key.empty()) key += u'\\';
    key += part;
  }
  return key;
}

std::u16string_view withoutQuotes(std::u16string_view value) {
  const bool inQuotes = value.size() >= 2 && value.front() == u'"' && value.back() == u'"';
  return inQuotes ? value.substr(1, value.size() - 2) : value;
}

std::u16string_view directoryOf(std::u16string_view path) {
  const std::size_t end = path.rfind(u'\\');
  return end == std::u16string_view::npos ? std::u16string_view{} : path.substr(0, end);
}

std::u16string_view nameOf(std::u16string_view path) {
  return path.substr(path.rfind(u'\\') + 1);  // no separator: from the beginning
}

// By its file's name the system finds the rights of a program that was started by hand.
std::u16string fileKey(const Server& server) {
  return join({u"AppID", nameOf(server.path)});
}

void addApplication(std::vector<Entry>& out, const Server& server) {
  out.push_back({applicationKey(server), {}, server.classes.front().description});
  out.push_back({fileKey(server), u"AppID", server.classes.front().clsid});
}

void addClass(std::vector<Entry>& out, const Server& server, const Class& entry) {
  const std::u16string key = join({u"CLSID", entry.clsid});
  out.push_back({entry.progId, {}, entry.description});
  out.push_back({join({entry.progId, u"CLSID"}), {}, entry.clsid});
  out.push_back({key, {}, entry.description});
  out.push_back({key, u"AppID", server.classes.front().clsid});
  out.push_back({join({key, u"LocalServer32"}), {}, quoted(server.path)});
  out.push_back({join({key, u"ProgID"}), {}, entry.progId});
  out.push_back({join({key, u"Programmable"}), {}, {}});
  if (!server.library) return;
  out.push_back({join({key, u"TypeLib"}), {}, server.library->libid});
  out.push_back({join({key, u"Version"}), {}, server.library->version});
}

void addInterface(std::vector<Entry>& out, const Library& library, const Class& entry) {
  const std::u16string key = join({u"Interface", entry.iid});
  out.push_back({key, {}, entry.interfaceName});
  out.push_back({join({key, u"ProxyStubClsid32"}), {}, std::u16string(dispatchMarshaller)});
  out.push_back({join({key, u"TypeLib"}), {}, library.libid});
  out.push_back({join({key, u"TypeLib"}), u"Version", library.version});
}

std::u16string libraryKey(const Library& library) {
  return join({u"TypeLib", library.libid, library.version});
}

// Both word sizes: a 32-bit client's typed query failed with the 64-bit entry alone.
constexpr std::u16string_view platforms[] = {u"win32", u"win64"};

void addLibrary(std::vector<Entry>& out, const Server& server, const Library& library) {
  const std::u16string key = libraryKey(library);
  out.push_back({key, {}, library.description});
  for (const std::u16string_view platform : platforms)
    out.push_back({join({key, u"0", platform}), {}, server.path});
  out.push_back({join({key, u"FLAGS"}), {}, u"0"});
  out.push_back({join({key, u"HELPDIR"}), {}, std::u16string(directoryOf(server.path))});
}

}  // namespace

std::u16string quoted(std::u16string_view path) {
  return u'"' + std::u16string(path) + u'"';
}

bool samePath(std::u16string_view registered, std::u16string_view path) {
  return text::equalIgnoringCase(withoutQuotes(text::trim(registered)), path);
}

Server serverOf(std::u16string path, const automation::LibraryTable& library) {
  const auto widened = [](std::string_view text) { return std::u16string(text.begin(), text.end()); };
  Server server{
      std::move(path),
      {},
      Library{widened(library.libid), widened(library.version), std::u16string(library.description)}};
  for (const automation::ClassTable* table : library.classes)
    server.classes.push_back({std::u16string(table->progId), widened(table->clsid),
                              std::u16string(table->description), u'_' + std::u16string(table->name),
                              widened(table->iid)});
  return server;
}

std::vector<Entry> entries(const Server& server) {
  std::vector<Entry> out;
  addApplication(out, server);
  for (const Class& entry : server.classes) addClass(out, server, entry);
  if (!server.library) return out;
  for (const Class& entry : server.classes)
    if (!entry.iid.empty()) addInterface(out, *server.library, entry);
  addLibrary(out, server, *server.library);
  return out;
}

std::vector<Removal> removals(const Server& server) {
  std::vector<Removal> out;
  const auto whenOurs = [&](std::u16string tree, std::u16string evidence) {
    out.push_back({std::move(tree), {std::move(evidence), {}, server.path}});
  };
  // Interfaces, program names and rights carry no path: their class speaks for them and goes last.
  const std::u16string first = join({u"CLSID", server.classes.front().clsid, u"LocalServer32"});
  whenOurs(applicationKey(server), first);
  whenOurs(fileKey(server), first);
  for (const Class& entry : server.classes) {
    const std::u16string evidence = join({u"CLSID", entry.clsid, u"LocalServer32"});
    whenOurs(entry.progId, evidence);
    if (server.library && !entry.iid.empty()) whenOurs(join({u"Interface", entry.iid}), evidence);
  }
  if (server.library)
    whenOurs(join({u"TypeLib", server.library->libid}),
             join({libraryKey(*server.library), u"0", platforms[0]}));
  for (const Class& entry : server.classes)
    whenOurs(join({u"CLSID", entry.clsid}), join({u"CLSID", entry.clsid, u"LocalServer32"}));
  return out;
}

std::optional<EventSource> eventSource(const Server& server) {
  constexpr std::u16string_view applications = u"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application";
  constexpr std::uint32_t errorsAndWarnings = 1 | 2;
  if (server.eventSource.empty()) return std::nullopt;
  return EventSource{join({applications, server.eventSource}), server.path, errorsAndWarnings};
}

std::u16string applicationKey(const Server& server) {
  return join({u"AppID", server.classes.front().clsid});
}

std::optional<Request> parseRequest(std::u16string_view arguments) {
  constexpr std::u16string_view option = u"JobAccount:";
  const std::u16string_view whole = withoutQuotes(text::trim(arguments));
  if (whole.empty()) return Request{};
  if (whole.front() != u'/' && whole.front() != u'-') return std::nullopt;
  if (text::equalIgnoringCase(whole.substr(1), u"ThisUser")) return Request{{}, true};
  if (!text::equalIgnoringCase(whole.substr(1, option.size()), option)) return std::nullopt;
  const std::u16string_view name = text::trim(withoutQuotes(whole.substr(1 + option.size())));
  if (name.empty() || name.find(u'"') != std::u16string_view::npos) return std::nullopt;
  return Request{std::u16string(name), false};
}

}  // namespace vordane::registration

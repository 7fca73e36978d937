#include "odbc/server_store.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>

#include "platform/odbc/library.h"
#include "platform/odbc/values.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

const database::Description& describe(database::Layout layout) {
  switch (layout) {
    case database::Layout::faults:
      return store::faultDatabase;
    case database::Layout::ownLanguage:
      return language::ownDatabase;
    case database::Layout::commonLanguage:
      return language::commonDatabase;
    case database::Layout::registration:
      return settings::registrationDatabase;
    case database::Layout::schedule:
      return settings::scheduleDatabase;
  }
  throw std::logic_error("layout");
}

void insert(Link& link, const database::Description& description, const database::Row& row) {
  for (const database::TableDefinition& table : description.tables) {
    if (table.name != row.table) continue;
    std::vector<std::size_t> columns;
    Fields fields;
    for (std::size_t i = 0; i < row.values.size(); ++i) {
      if (automation::isNull(row.values[i])) continue;
      columns.push_back(i);
      fields.push_back(toField(fit(table.columns[i], row.values[i])));
    }
    link.change(postgres().insert(table, columns, {}), fields);
    return;
  }
  throw std::logic_error("no such table");
}

}  // namespace

std::filesystem::path serverFolder() {
  const char* folder = std::getenv("VORDANE_SERVER");
  if (folder == nullptr) throw std::logic_error("start this program through tests/odbc/with-server.sh");
  return folder;
}

const Api& api() {
  static const Api loaded = loadApi(systemLibrary());
  return loaded;
}

std::unique_ptr<Link> connectTo(std::string_view database) {
  return connectThrough((serverFolder() / "socket").generic_string(), database);
}

std::unique_ptr<Link> connectThrough(const std::string& server, std::string_view database) {
  const std::string connection = "DRIVER={PostgreSQL Unicode};SERVER=" + server +
                                 ";DATABASE=" + std::string(database) + ";UID=administrator;LFConversion=0";
  static Waiter waiter;
  return std::make_unique<Link>(api(), text::fromUtf8(connection), std::chrono::seconds(10), waiter);
}

void runOn(std::string_view database, const std::string& statement) {
  connectTo(database)->change(statement);
}

DataSources::DataSources() {
  std::random_device random;
  folder_ = std::filesystem::temp_directory_path() /
            ("vordane-sources-" + std::to_string(random()) + std::to_string(random()));
  std::filesystem::create_directories(folder_);
}

DataSources::~DataSources() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::filesystem::path DataSources::write(std::string_view database, std::string_view more,
                                         std::string_view user) const {
  const std::filesystem::path path = folder_ / (std::string(database) + "-" + std::string(user) + ".dsn");
  std::ofstream(path) << "[ODBC]\r\nDRIVER=PostgreSQL Unicode\r\nSERVER="
                      << (serverFolder() / "socket").generic_string() << "\r\nDATABASE=" << database
                      << "\r\nUID=" << user << "\r\n"
                      << more;
  return path;
}

std::filesystem::path DataSources::writeThrough(const std::string& server, std::string_view database) const {
  const std::filesystem::path path = folder_ / (std::string(database) + "-through.dsn");
  std::ofstream(path) << "[ODBC]\nDRIVER=PostgreSQL Unicode\nSERVER=" << server << "\nDATABASE=" << database
                      << "\nUID=administrator\n";
  return path;
}

std::string makeStore(database::Layout layout, const std::vector<database::Row>& rows) {
  static int made = 0;
  const std::string name = "store" + std::to_string(std::random_device()()) + "_" + std::to_string(++made);
  runOn("postgres", "create database " + name);
  const auto link = connectTo(name);
  const database::Description& description = describe(layout);
  for (const std::string& statement : postgres().create(description)) link->change(statement);
  for (const database::Row& row : rows) insert(*link, description, row);
  return name;
}

ServerUnderTest::ServerUnderTest(Options options)
    : engine_(makeEngine(startup::databases, systemLibrary(), options)) {}

std::u16string ServerUnderTest::make(database::Layout layout, const std::vector<database::Row>& rows) {
  database_ = makeStore(layout, rows);
  return sources_.write(database_).u16string();
}

}  // namespace vordane::odbc

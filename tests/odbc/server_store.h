// Stores on the test's own server (with-server.sh), under the contract tests and for the tests of their own.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "database/maker.h"
#include "platform/odbc/dialect.h"
#include "platform/odbc/engine.h"

namespace vordane::odbc {

// The folder of the server that this process runs beside.
std::filesystem::path serverFolder();

// Sends a signal to the server and all its processes; who they are.
std::vector<int> signalServer(int signal);

// The driver manager of this machine, and a connection to one of the server's databases as its administrator.
const Api& api();
std::unique_ptr<Link> connectTo(std::string_view database);
// The same through what listens in another folder.
std::unique_ptr<Link> connectThrough(const std::string& server, std::string_view database);

// Runs one statement there as any other client does.
void runOn(std::string_view database, const std::string& statement);

// A file data source for one of the server's databases, in a folder of its own that goes with the object.
class DataSources {
 public:
  DataSources();
  ~DataSources();
  DataSources(const DataSources&) = delete;
  DataSources& operator=(const DataSources&) = delete;
  std::filesystem::path write(std::string_view database, std::string_view more = {},
                              std::string_view user = "administrator") const;
  // One that goes to the server through what listens in that folder.
  std::filesystem::path writeThrough(const std::string& server, std::string_view database) const;
  std::filesystem::path folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

// A new database with the store of this layout; its name.
std::string makeStore(database::Layout layout, const std::vector<database::Row>& rows = {});

class ServerUnderTest : public database::EngineUnderTest {
 public:
  explicit ServerUnderTest(Options options = {});
  database::Engine& engine() override { return *engine_; }
  std::u16string make(database::Layout layout, const std::vector<database::Row>& rows = {}) override;
  bool keepsEveryCharacter() const override { return false; }
  // The database behind the last path that was made.
  const std::string& database() const { return database_; }

 private:
  DataSources sources_;
  std::unique_ptr<database::Engine> engine_;
  std::string database_;
};

}  // namespace vordane::odbc

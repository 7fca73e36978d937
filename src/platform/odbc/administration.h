// What an administrator does with a store on a PostgreSQL server: makes it, and has it examined.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "platform/description.h"
#include "platform/odbc/link.h"

namespace vordane::odbc {

// What all stations must have in common to write into the store.
struct Subject {
  std::u16string_view name;
  std::optional<database::Agreement> own;  // nothing: whoever asks has none
};

// One thing that was looked at, in one English sentence.
struct Examined {
  bool good;
  std::string text;
  bool operator==(const Examined&) const = default;
};

// Owns a connection. One thread. Every failure is a DatabaseError.
class Administration {
 public:
  // Connects as the file data source at `path` says.
  Administration(std::u16string_view path, const Lookup& lookup);

  // Makes roles, tables and rights of the store in the data source's database, all of it or nothing; says
  // what it made and what was there, a line each. Doing it again gives back rights that somebody took, takes
  // those that somebody gave, and renews an index that does not agree with the events. `subject` is kept in
  // the store; another one than is kept there is refused as long as there are events. Refuses a database that
  // holds other tables, and a schema that it did not make.
  std::vector<std::string> create(const database::Description& description, const Subject& subject);

  // Changes nothing. `now` is the clock of this station.
  using Clock = std::function<std::chrono::system_clock::time_point()>;
  std::vector<Examined> examine(const database::Description& description, const Subject& subject,
                                const Clock& now = std::chrono::system_clock::now);

 private:
  std::u16string encryption_;  // what the data source says of it
  Api api_;
  Waiter waiter_;
  std::unique_ptr<Link> link_;
};

// The version of what `create` makes, and the subject under which a store keeps it.
inline constexpr std::u16string_view storeVersion = u"1", versionSubject = u"Store";

}  // namespace vordane::odbc

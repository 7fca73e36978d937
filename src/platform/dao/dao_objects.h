// DAO's objects as far as they are used here, each a late-bound object; every failed call is a DatabaseError
// with the engine's own number and text.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/automation.h"
#include "platform/database.h"
#include "platform/services.h"

namespace vordane::dao {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;

inline constexpr std::int16_t dateFieldType = 8;  // dbDate

Value call(const ObjectRef& object, std::u16string_view member,
           std::initializer_list<Argument> arguments = {});
Value get(const ObjectRef& object, std::u16string_view member,
          std::initializer_list<Argument> arguments = {});
ObjectRef getObject(const ObjectRef& object, std::u16string_view member,
                    std::initializer_list<Argument> arguments = {});
void put(const ObjectRef& object, std::u16string_view member, const Value& value);

// The Access engine's object: DAO.DBEngine.120, else DAO.DBEngine.36. DatabaseError 429 when neither is
// there.
ObjectRef createEngine(platform::ObjectCreator& creator);
// Opens through the default workspace, options and connect text left out.
ObjectRef openDatabase(const ObjectRef& engine, std::u16string_view path, bool readOnly);
inline ObjectRef openDatabase(platform::ObjectCreator& creator, std::u16string_view path, bool readOnly) {
  return openDatabase(createEngine(creator), path, readOnly);
}

// A recordset of DAO with its fields asked for once: a field object stays good from row to row.
class DaoRecordset {
 public:
  explicit DaoRecordset(ObjectRef object);
  ~DaoRecordset();
  DaoRecordset(const DaoRecordset&) = delete;
  DaoRecordset& operator=(const DaoRecordset&) = delete;

  const ObjectRef& object() const { return object_; }
  // Dates as "YYYY-MM-DD HH:MM:SS".
  Value read(const Value& nameOrPosition);
  // The same for a date column; any other value as it stands, which DAO converts.
  void write(const Value& nameOrPosition, const Value& value);
  bool isDate(const Value& nameOrPosition);
  void close();

 private:
  struct KnownField {
    Value key;
    ObjectRef object;
    std::optional<bool> isDate;
  };
  KnownField& field(const Value& nameOrPosition);

  ObjectRef object_;
  ObjectRef fields_;
  std::vector<KnownField> known_;
};

}  // namespace vordane::dao

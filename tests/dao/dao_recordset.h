// DAO's Recordset, Fields and Field over the embedded engine's recordset.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dao/dao_object.h"
#include "platform/access/access_file.h"
#include "platform/database.h"
#include "platform/sqlite/engine.h"

namespace vordane::fakes {

inline constexpr std::int32_t dynaset = 2, snapshot = 4;

// An open file; `database` goes when it is closed.
struct DaoFile {
  std::unique_ptr<database::Database> database;
  std::vector<access::Table> tables;
  bool updatable = false;
};

void requireOpenFile(const DaoFile& file);
std::int16_t daoTypeOf(const access::Column& column);

automation::ObjectRef openDaoRecordset(const DaoWorldRef& world, const std::shared_ptr<DaoFile>& file,
                                       const std::u16string& statement, std::int32_t type);

}  // namespace vordane::fakes

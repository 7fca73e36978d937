// DAO's object model over the embedded engine, so that the DAO engine can be run where no Access engine is:
// DBEngine, Workspaces, Workspace, Database, TableDefs, Recordset, Fields and Field, with DAO's own errors.
#pragma once

#include "dao/dao_object.h"
#include "platform/services.h"

namespace vordane::fakes {

// What CreateObject("DAO.DBEngine.120") gives. Besides DAO's own members it has TestMisuse: what was called
// wrongly so far, one line each.
automation::ObjectRef makeDaoEngine(const DaoWorldRef& world);

// A workstation with one of the two versions of DAO, or none.
class DaoWorkstation : public platform::ObjectCreator {
 public:
  explicit DaoWorkstation(std::u16string installed = u"DAO.DBEngine.120")
      : installed_(std::move(installed)) {}
  automation::ObjectRef create(std::u16string_view progId) override;

  std::vector<std::u16string> asked;
  DaoWorldRef world = std::make_shared<DaoWorld>();

 private:
  std::u16string installed_;
};

}  // namespace vordane::fakes

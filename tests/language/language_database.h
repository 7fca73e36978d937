// A language database with the tables a test names, and a form to put it on.
#pragma once

#include "fakes/folder_engine.h"
#include "language/language_databases.h"
#include "platform/control_types.h"
#include "platform/window.h"

namespace vordane::fakes {

inline database::Value t(const char16_t* text) {
  return std::u16string(text);
}
inline database::Value n(std::int32_t number) {
  return number;
}
inline const database::Value null = automation::Null{};

class LanguageDatabase {
 public:
  LanguageDatabase& with(std::u16string_view table, std::vector<Row> rows) {
    return with(tableNamed(language::ownTables, table), std::move(rows));
  }
  LanguageDatabase& with(const database::TableDefinition& table, std::vector<Row> rows) {
    tables_.push_back({table, std::move(rows)});
    return *this;
  }
  database::Database& open() {
    database_.reset();
    makeDatabase(engine, u"VORDANE.LNG", tables_);
    database_ = engine.open(u"VORDANE.LNG", false);
    return *database_;
  }

  FolderEngine engine;

 private:
  std::vector<NewTable> tables_;
  std::unique_ptr<database::Database> database_;
};

inline window::Form makeForm() {
  return window::Form(u"dlgFaultDisplay", {{u"Caption", std::u16string(u"designed")},
                                           {u"Font.Name", std::u16string(u"Arial")},
                                           {u"Font.Size", 8.0F},
                                           {u"Width", std::int32_t{9000}},
                                           {u"Height", std::int32_t{6000}},
                                           {u"Visible", true}});
}

inline window::Control& addControl(window::Form& form, const char16_t* name, const char16_t* type,
                                   int index = -1) {
  window::Properties properties = window::designedProperties(type);
  if (properties.count(u"Caption") != 0) properties[u"Caption"] = std::u16string(u"designed");
  if (properties.count(u"ToolTipText") != 0) properties[u"ToolTipText"] = std::u16string(u"designed tip");
  properties[u"Font.Name"] = std::u16string(u"Arial");
  properties[u"Font.Size"] = 8.0F;
  return form.add(name, index, type, std::move(properties));
}

}  // namespace vordane::fakes

#include "examination.h"

#include <utility>

#include "language_texts.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "platform/odbc/administration.h"
#include "platform/odbc/library.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

// Where a data source stands, the store that it leads to. What can't be opened has been said already.
void examineStore(const SuiteLayout& layout, std::vector<Finding>& findings) try {
  const std::u16string file = toText(layout.faults());
  if (database::fileKind(file) != database::FileKind::dataSource) return;
  const auto texts = sqlite::makeEngine(startup::databases);
  odbc::Subject language{store::languageSubject,
                         storingLanguageOf(*texts, text::toUtf8(toText(layout.texts())))};
  for (const odbc::Examined& one :
       odbc::Administration(file, odbc::systemLibrary()).examine(store::faultDatabase, language))
    if (!one.good) findings.push_back({Weight::incomplete, "the store of FAULT.MDB: " + one.text});
} catch (const database::DatabaseError&) {
} catch (const ToolError&) {
}

void add(std::vector<Finding> more, std::vector<Finding>& findings) {
  for (Finding& finding : more) findings.push_back(std::move(finding));
}

}  // namespace

Surroundings surroundingsHere(SetupSystem& system) {
  return {latestNow(), [&system](const std::filesystem::path& folder) { return system.roomAt(folder); },
          thisWorkstation() ? [&system](const std::filesystem::path& file) { return system.inUse(file); }
                            : std::function<bool(const std::filesystem::path&)>()};
}

std::vector<Finding> examineSuite(const SuiteLayout& layout, database::Engine& engine,
                                  const Surroundings& around) {
  std::vector<Finding> findings = examineFiles(layout, engine);
  examineStore(layout, findings);
  add(examineSurroundings(layout, engine, around), findings);
  if (const auto workstation = thisWorkstation()) add(examineWorkstation(layout, *workstation), findings);
  return findings;
}

}  // namespace vordane::tools

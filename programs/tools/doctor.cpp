#include <iostream>
#include <memory>

#include "commands.h"
#include "doctor_checks.h"
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

// 0: nothing to say; 1: something is incomplete or stops the program.
int doctor(const std::string& directory) {
  const SuiteLayout layout{suiteDirectory(directory)};
  std::vector<Finding> findings = examineFiles(layout, *examiningEngine());
  examineStore(layout, findings);
  if (const auto workstation = thisWorkstation())
    for (Finding& finding : examineWorkstation(layout, *workstation)) findings.push_back(std::move(finding));
  else
    std::cout << "settings and registration are examined on Windows only\n";
  for (const std::string& line : linesOf(findings)) std::cout << line << '\n';
  return findings.empty() ? 0 : 1;
}

}  // namespace

void declareDoctor(options::Command& command) {
  const auto directory = std::make_shared<std::string>();
  command.argument("SUITE_DIR", *directory, "the version directory of a suite");
  command.notes("Exit code: 0 nothing is missing or unsafe, 1 there is something to say, 2 wrong usage.");
  command.runs([directory] { return doctor(*directory); });
}

}  // namespace vordane::tools

#include "doctor_remedies.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "lines.h"
#include "platform/file_moves.h"
#include "store/statements.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

// Whoever opens the faults for writing makes a stale index anew at its first question.
void makeIndexAnew(const Medicine& medicine) {
  const auto faults = medicine.engine.open(toText(medicine.layout.faults()), false);
  faults->openRecordset(store::faultsNewestFirst)->isEmpty();
}

void addRegistration(const Medicine& medicine) {
  const auto registry = medicine.engine.open(toText(medicine.layout.registration()), false);
  const auto rows = registry->openRecordset(u"select * from Registry");
  rows->addNew();
  for (const auto& [column, value] : registryRow) rows->set(column, std::u16string(value));
  rows->update();
}

void registerProgram(const Medicine& medicine) {
  if (!medicine.system.registerProgram(medicine.layout.program(), true))
    throw ToolError(text::toUtf8(toText(medicine.layout.program())) +
                    ": it could not register itself. Run this as an administrator");
}

void makeTexts(const Medicine& medicine, const fs::path& place) {
  if (medicine.language == nullptr)
    throw ToolError("the texts have to come from somewhere: name --source and --language");
  for (const DataFile& file : dataFiles(*medicine.language))
    if (file.place == place) file.make(medicine.layout.root / place);
}

void removeLocks(const Medicine& medicine) {
  for (const fs::path& lock : staleLocks(medicine.layout, medicine.around))
    if (const auto failure = platform::removeFile(lock))
      throw ToolError(text::toUtf8(toText(lock)) + ": it can't be deleted (" + failure.message() + ")");
}

const char* tokenFor(Weight weight) {
  return weight == Weight::fatal ? "fatal" : weight == Weight::incomplete ? "incomplete" : "unsafe";
}

}  // namespace

std::string deedOf(Remedy remedy) {
  switch (remedy) {
    case Remedy::none:
      break;
    case Remedy::faultIndex:
      return "make the index of the faults anew";
    case Remedy::suiteRegistration:
      return "write the add-in's row into Register.mdb";
    case Remedy::program:
      return "let VORDANE.EXE register itself";
    case Remedy::ownTexts:
      return "make VORDANE.LNG of its sources";
    case Remedy::sharedTexts:
      return "make Common.LNG of its sources";
    case Remedy::accessLocks:
      return "delete the locks that no program holds";
  }
  return {};
}

void apply(Remedy remedy, const Medicine& medicine) {
  switch (remedy) {
    case Remedy::none:
      return;
    case Remedy::faultIndex:
      return makeIndexAnew(medicine);
    case Remedy::suiteRegistration:
      return addRegistration(medicine);
    case Remedy::program:
      return registerProgram(medicine);
    case Remedy::ownTexts:
      return makeTexts(medicine, places.texts());
    case Remedy::sharedTexts:
      return makeTexts(medicine, places.sharedTexts());
    case Remedy::accessLocks:
      return removeLocks(medicine);
  }
}

std::vector<Remedy> remediesFor(const std::vector<Finding>& findings) {
  std::vector<Remedy> all;
  for (const Finding& finding : findings)
    if (finding.remedy != Remedy::none && std::find(all.begin(), all.end(), finding.remedy) == all.end())
      all.push_back(finding.remedy);
  return all;
}

std::string jsonOf(const std::string& suite, const std::vector<Finding>& findings,
                   const std::vector<std::string>& mended) {
  using Object = nlohmann::ordered_json;
  const auto whole = [](const std::string& utf8) { return text::toUtf8(text::fromUtf8(utf8)); };
  Object all{{"format", "vordane doctor"}, {"version", 1}, {"suite", whole(suite)}};
  all["mended"] = mended;
  all["findings"] = Object::array();
  for (const Finding& finding : findings) {
    Object one{{"weight", tokenFor(finding.weight)}, {"text", whole(finding.text)}, {"remedy", nullptr}};
    if (finding.remedy != Remedy::none) one["remedy"] = deedOf(finding.remedy);
    all["findings"].push_back(one);
  }
  return all.dump() + '\n';
}

}  // namespace vordane::tools

#include "settings/comRegQuil32.h"

#include <array>
#include <optional>
#include <utility>

#include "settings/suite_databases.h"
#include "settings/suite_settings.h"
#include "text/text.h"

namespace vordane::comRegQuil32 {
namespace {

using settings::noSetting;
using settings::suiteApplication;
using settings::setting::installPath;
using text::middle;

// What an item without a meaning for the product gives; no caller of this program meets it.
constexpr std::u16string_view noDirectory = u"30000";

// The two products that live inside a version directory of the suite.
bool isSuitePart(std::u16string_view product) {
  return product == u"QUIL32" || product == u"ADDINS";
}

// The stored text "NONE" says the same as no text at all.
std::optional<std::u16string> readSetting(const Installation& installation, std::u16string_view application,
                                          std::u16string_view section, std::u16string_view key) {
  std::optional<std::u16string> value = installation.settings.read(application, section, key);
  if (value == noSetting) value.reset();
  return value;
}

struct Lookup {
  const Installation& installation;
  std::u16string product;      // upper-case
  std::u16string application;  // where the product's settings stand
  std::u16string section;
};

Lookup lookupFor(const Installation& installation, std::u16string_view product) {
  const std::u16string name = text::toUpper(product);
  return {installation, name, isSuitePart(name) ? std::u16string(suiteApplication) : name,
          GetSuiteVersion(installation, product)};
}

std::u16string runningBase(const Lookup& lookup) {
  return lookup.installation.runningDirectory + u"\\";
}

std::u16string baseDirectory(const Lookup& lookup) {
  const auto stored = readSetting(lookup.installation, lookup.application, lookup.section, installPath);
  if (!stored) return runningBase(lookup);
  if (!isSuitePart(lookup.product)) return *stored;
  return *stored + lookup.product + u"\\";
}

// Directories that lie below or beside the base, for each product that has them.
struct FixedItem {
  std::u16string_view item;
  std::optional<std::u16string_view> forQuil32, forAddins, forOthers;  // nothing: no meaning there
};

constexpr auto unknown = std::nullopt;
constexpr std::array<FixedItem, 7> fixedItems{{
    {u"ME", u"", u"", u""},
    {u"HELP", u"HELP\\", u"HELP\\", u"HELP\\"},
    {u"REPORT", u"REPORT\\", u"REPORT\\", u"REPORT\\"},
    {u"DATABASE", u"DATABASE\\", u"DATABASE\\", u"DATABASE\\"},
    {u"ACROBATRD", u"READER\\", unknown, unknown},
    {u"REGDBOFQUIL32", u"DATABASE\\", u"..\\QUIL32\\DATABASE\\", unknown},
    {u"BACKGRND", u"..\\BACKGRND\\", u"..\\BACKGRND\\", unknown},
}};

std::u16string fixedDirectory(const Lookup& lookup, const FixedItem& item) {
  const auto& below = lookup.product == u"QUIL32"   ? item.forQuil32
                      : lookup.product == u"ADDINS" ? item.forAddins
                                                    : item.forOthers;
  return below ? baseDirectory(lookup) + std::u16string(*below) : std::u16string(noDirectory);
}

// Any other item names a product: its own version, then that version's directory.
std::u16string productDirectory(const Lookup& lookup, std::u16string_view item) {
  const auto version = readSetting(lookup.installation, lookup.application, lookup.section, item);
  if (!version || version->size() != 5) return runningBase(lookup);
  return readSetting(lookup.installation, item, *version, installPath).value_or(u"\\");
}

}  // namespace

std::u16string GetSuiteVersion(const Installation& installation, std::u16string_view product) {
  // ...QUILMAR32\vvvvv\PRODUCT: the positions are fixed, since a version always has five characters.
  const std::u16string name = text::toUpper(product);
  const std::u16string directory = text::toUpperPath(installation.runningDirectory);
  const std::u16string_view end = text::right(directory, 16 + name.size());
  if (middle(end, 1, 9) != suiteApplication || middle(end, 17, name.size()) != name)
    return std::u16string(noSetting);
  return std::u16string(middle(end, 11, 5));
}

std::u16string GetInstallPath(const Installation& installation, std::u16string_view product,
                              std::u16string_view item) {
  const Lookup lookup = lookupFor(installation, product);
  const std::u16string wanted = text::toUpper(item);
  for (const FixedItem& fixed : fixedItems)
    if (fixed.item == wanted) return text::toUpperPath(fixedDirectory(lookup, fixed));
  return text::toUpperPath(productDirectory(lookup, wanted));
}

std::u16string suiteDirectory(const Installation& installation) {
  const Lookup lookup = lookupFor(installation, u"ADDINS");
  if (auto stored = readSetting(installation, lookup.application, lookup.section, installPath))
    return std::move(*stored);
  const std::u16string& running = installation.runningDirectory;
  return lookup.section == noSetting ? running : running.substr(0, running.rfind(u'\\'));
}

std::u16string registrationPath(const Installation& installation, std::u16string_view product) {
  return GetInstallPath(installation, product, u"RegDBofQuil32") + u"Register.mdb";
}

bool RegisterVersion(const Installation& installation, database::Engine& engine, std::u16string_view product,
                     std::u16string_view application, std::u16string_view version,
                     std::u16string* reason) try {
  const auto registry = engine.open(registrationPath(installation, product), false);
  const auto rows = registry->openRecordset(settings::statement::registration.with({application}));
  if (rows->recordCount() > 0) {
    rows->edit();
    rows->set(u"Version", std::u16string(version));
    rows->update();
  }
  return true;
} catch (const database::DatabaseError& error) {
  if (reason != nullptr) *reason = error.description();
  return false;
}

}  // namespace vordane::comRegQuil32

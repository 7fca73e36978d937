#include <windows.h>

#include "doctor_checks.h"
#include "platform/dao/dao_engine.h"
#include "platform/engine_choice.h"
#include "platform/odbc/engine.h"
#include "platform/odbc/library.h"
#include "platform/sqlite/engine.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/services/services.h"
#include "settings/suite_settings.h"
#include "startup/databases.h"

namespace vordane::tools {
namespace {

// `view` is RRF_SUBKEY_WOW6464KEY, RRF_SUBKEY_WOW6432KEY, or 0 for the program's own part of the registry.
std::optional<std::u16string> defaultValue(HKEY root, const std::u16string& key, DWORD view) {
  wchar_t value[1024];
  DWORD bytes = sizeof value;
  const auto* name = reinterpret_cast<const wchar_t*>(key.c_str());
  if (RegGetValueW(root, name, nullptr, RRF_RT_REG_SZ | view, nullptr, value, &bytes) != ERROR_SUCCESS)
    return std::nullopt;
  return std::u16string(reinterpret_cast<const char16_t*>(value));
}

// Per user first, as Windows looks.
std::optional<RegisteredClass> classValue(const std::u16string& key, DWORD view) {
  const std::u16string path = u"Software\\Classes\\" + key;
  if (const auto own = defaultValue(HKEY_CURRENT_USER, path, view)) return RegisteredClass{*own, false};
  if (const auto all = defaultValue(HKEY_LOCAL_MACHINE, path, view)) return RegisteredClass{*all, true};
  return std::nullopt;
}

std::optional<RegisteredClass> classIn(std::u16string_view progId, DWORD view) {
  const auto clsid = classValue(std::u16string(progId) + u"\\CLSID", view);
  return clsid ? classValue(u"CLSID\\" + clsid->command + u"\\LocalServer32", view) : std::nullopt;
}

std::optional<RegisteredClass> registeredClass(std::u16string_view progId) {
  return classIn(progId, 0);
}

ClassByWordSize classByWordSize(std::u16string_view progId) {
  return {classIn(progId, RRF_SUBKEY_WOW6464KEY), classIn(progId, RRF_SUBKEY_WOW6432KEY)};
}

std::string versionOf(std::u16string_view program) {
  const auto found = windows::versionOfFile(program);
  if (!found) return {};
  return std::to_string(found->major) + "." + std::to_string(found->minor) + "." +
         std::to_string(found->revision);
}

// The Access engine is an automation server, so it needs what automation needs.
struct ExaminingEngine : database::Engine {
  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override {
    return engine->open(path, readOnly);
  }
  com::Apartment apartment;
  windows::ComObjectCreator creator;
  std::unique_ptr<database::Engine> engine = database::makeEngineChoice(
      dao::makeEngine(startup::databases, creator),
      sqlite::makeEngine(startup::databases, {windows::isOnNetworkDrive}), {windows::isHeldByOthers},
      odbc::makeEngine(startup::databases, odbc::systemLibrary()));
};

}  // namespace

std::unique_ptr<database::Engine> examiningEngine() {
  return std::make_unique<ExaminingEngine>();
}

std::optional<Workstation> thisWorkstation() {
  return Workstation{[](std::u16string_view section, std::u16string_view key) {
                       return windows::RegistrySettings().read(settings::suiteApplication, section, key);
                     },
                     registeredClass,
                     windows::whoMayReplace,
                     [](std::u16string_view path) { return windows::SystemFiles().exists(path); },
                     classByWordSize,
                     versionOf};
}

}  // namespace vordane::tools

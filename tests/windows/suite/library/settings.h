// The suite's settings of this user, where its programs look for them.
#pragma once

#include <string>

namespace vordane::suite {

// HKEY_CURRENT_USER\Software\VB and VBA Program Settings\QUILMAR32\VERSION.
void setSetting(const std::wstring& version, const std::wstring& name, const std::wstring& value);
void removeSetting(const std::wstring& version, const std::wstring& name);
void removeSettings(const std::wstring& version);

// What the window remembers of itself (its place, its columns) is put aside while tests run, and put back.
class WindowSettingsKept {
 public:
  WindowSettingsKept();
  ~WindowSettingsKept();
  static void forget();  // as before the first start
};

}  // namespace vordane::suite

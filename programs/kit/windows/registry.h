// The workstation's registry. What goes wrong is a std::runtime_error that names the key and the system's
// error.
#pragma once

#include "kit/core/saved_state.h"

namespace vordane::kit {

class WindowsRegistry : public Registry {
 public:
  std::optional<RegistryTree> read(const RegistryPlace& place) override;
  bool exists(const RegistryPlace& place) override;
  void demandRights(const RegistryPlace& place) override;
  void makeKey(const RegistryPlace& place, const std::string& rights) override;
  void removeKey(const RegistryPlace& place) override;
  void write(const RegistryPlace& place, const std::u16string& name, const RegistryValue& value) override;
  void remove(const RegistryPlace& place, const std::u16string& name) override;
};

}  // namespace vordane::kit

// What a host has registered, itself, its child number and the exchange, and calls to it. One thread.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/automation.h"
#include "settings/shared_state.h"
#include "startup/application.h"

namespace vordane::startup {

class HostLink {
 public:
  explicit HostLink(const SharedState& state) : state_(state) {}

  const automation::ObjectRef& ref() const { return host_; }  // null stand-alone and before RegisterPBX
  void set(automation::ObjectRef host) { host_ = std::move(host); }
  void letGo() { host_.reset(); }
  std::int16_t ID() const { return id_; }
  void setID(std::int16_t id) { id_ = id; }
  const std::u16string& PBXName() const { return pbxName_; }  // stand-alone, of the command line
  void setPBXName(std::u16string name) { pbxName_ = std::move(name); }

  // Errors of the host, a missing one included, are ignored; stand-alone nothing is called.
  void call(std::u16string_view member, std::initializer_list<automation::Argument> arguments = {});

 private:
  const SharedState& state_;
  automation::ObjectRef host_;
  std::int16_t id_ = 0;
  std::u16string pbxName_;
};

// The pieces of a job parameter that the host keeps; none when the host can't tell.
std::vector<std::u16string> GetJobParameter(const Workstation& station, const automation::ObjectRef& host,
                                            std::u16string_view name);
void StoreJobParameter(HostLink& host, std::u16string_view first, const std::u16string& second);

}  // namespace vordane::startup

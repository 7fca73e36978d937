// The one class through which hosts drive the program: a thin layer that forwards to the window and counts
// its users. Created through Application::createLayer.
#pragma once

#include <string>

#include "platform/automation.h"
#include "platform/member_table.h"
#include "startup/application.h"
#include "startup/library.h"

namespace vordane {

class cOLELayer final : public automation::TableObject {
 public:
  static const automation::ClassTable& classTable() { return startup::layerTable(); }
  const automation::ClassTable& table() const override { return classTable(); }

  // Registers the add-in, loads the window and counts this user.
  explicit cOLELayer(startup::Application& application);
  ~cOLELayer() override = default;

  // The outside world has let go of this object, or the host that held it has died; counts once. The last
  // one saves the window's place, unloads it and ends the process. Never throws.
  void released() noexcept;

  // True when the window's load failed. An error of the host's getsysinfo is raised.
  bool RegisterPBX(const std::u16string& PBX, const automation::ObjectRef& Parent, std::int16_t ID);
  bool Visible();
  void setVisible(bool visible);
  bool CreateSchedule(std::int32_t Key, std::int16_t RAction);
  std::int16_t RunSchedule(const std::u16string& Key);  // 0 started, 10001 busy, 10000 error; never throws
  std::int16_t CancelSchedule();
  void SetBackGround(std::int16_t Index);

 protected:
  automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) override;

 private:
  void addTitle(const std::u16string& PBX);
  void readSysInfo(const std::u16string& PBX, const automation::ObjectRef& Parent);

  startup::Application& application_;
  bool counted_ = false;
};

}  // namespace vordane

// Where the window stands: from the place that the host keeps, and back to it. One thread.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "startup/host_link.h"
#include "startup/window_life.h"

namespace vordane::startup {

class WindowPlace {
 public:
  WindowPlace(const Workstation& station, WindowLife& life, HostLink& host)
      : station_(station), life_(life), host_(host) {}

  // Places the window from the host's stored position, or in the middle; only before the first Parent.
  void FrmMove(const automation::ObjectRef& host);
  void FrmPositionSave();
  // The place that is saved once the window has gone.
  void remember();

 private:
  using Place = std::pair<std::int32_t, std::int32_t>;
  std::optional<Place> saved(const automation::ObjectRef& host);

  const Workstation& station_;
  WindowLife& life_;
  HostLink& host_;
  std::optional<Place> last_;
};

}  // namespace vordane::startup

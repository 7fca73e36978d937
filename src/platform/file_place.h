// Where a file lies, as far as its path and the kind of its drive tell.
#pragma once

#include <functional>
#include <string_view>

namespace vordane::platform {

using DriveIsRemote = std::function<bool(char16_t letter)>;

// True for a share and for a drive that `driveIsRemote` calls remote; without it no drive is. A path behind
// "\\?\" or "\\.\" is taken by what follows. `path` is a whole one.
bool liesOnNetwork(std::u16string_view path, const DriveIsRemote& driveIsRemote = {});

}  // namespace vordane::platform

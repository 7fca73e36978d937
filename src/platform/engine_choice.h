// The engine for a database file, chosen by the file's own first bytes: an Access file goes to the Access
// engine, an embedded one to the embedded engine, a file data source to the engine for servers; anything else
// is refused.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/database.h"

namespace vordane::database {

enum class FileKind { missing, access, embedded, dataSource, unknown };

FileKind fileKind(std::u16string_view path);

// Whether somebody else holds a file so that nobody can look into it, as Access does while it repairs one and
// a virus scanner while it looks, and how long to wait for them. Without `isHeld` no file ever is.
struct Held {
  std::function<bool(std::u16string_view path)> isHeld = {};
  std::chrono::milliseconds wait{5000};
};

// Opens with one of them, or throws DatabaseError: 3024 without the file, 3343 for a file of no such kind or
// without an engine for it, 3260 for one that somebody else still holds when the wait is over.
std::unique_ptr<Engine> makeEngineChoice(std::unique_ptr<Engine> access, std::unique_ptr<Engine> embedded,
                                         Held held = {}, std::unique_ptr<Engine> server = nullptr);

}  // namespace vordane::database

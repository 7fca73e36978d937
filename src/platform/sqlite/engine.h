// The embedded database engine: plain SQLite 3 files under statements in the Access dialect. Which tables
// and statements there are is described by those who use it. Everything an engine opened belongs to one
// thread; failures are DatabaseErrors.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/database.h"
#include "platform/description.h"

namespace vordane::sqlite {

struct Options {
  // Whether a path lies on a network drive, where write-ahead logging doesn't work. Without it, shares do.
  std::function<bool(std::u16string_view path)> onNetwork = {};
  int lockWaitMilliseconds = 5000;
  // A batch that has held changes for this long is saved in between.
  int longestUnsavedMilliseconds = 500;
  // An exchange with more faults is shown when so many rows of it are read. The others follow, four times as
  // many at a time.
  std::size_t rowsReadAtOnce = 1024;
  // The name of the operating-system layer, for tests that let it fail; empty: the default one.
  std::string fileLayer = {};
};

// What is described must outlive the engine and the databases it opens.
std::unique_ptr<database::Engine> makeEngine(database::Descriptions descriptions, Options options = {});

// True when the file begins as this engine's files do. False for anything else, a missing file included.
bool isEmbeddedFile(std::u16string_view path);

}  // namespace vordane::sqlite

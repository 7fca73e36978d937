// The database on a server that many workstations share, through the workstation's ODBC driver manager. A
// file data source stands where a file would. Everything an engine opened belongs to one thread; failures are
// DatabaseErrors.
#pragma once

#include <memory>

#include "platform/database.h"
#include "platform/description.h"
#include "platform/odbc/api.h"

namespace vordane::odbc {

struct Options {
  int connectMilliseconds = 8000;
  // An answer that takes this long is only waited for on if the server says, within `askMilliseconds` and as
  // much for the connection to ask it by, that it is at work on the question.
  int answerMilliseconds = 6000, askMilliseconds = 1000;
  // After a server that did not answer nobody tries to connect for so long, so that what follows from a
  // failure does not wait for it too.
  int pauseMilliseconds = 1000;
  int lockWaitMilliseconds = 5000;
  // A batch that has held changes for this long is saved in between.
  int longestUnsavedMilliseconds = 500;
};

// What is described must outlive the engine and the databases it opens. `lookup` is asked when the first
// database is opened.
std::unique_ptr<database::Engine> makeEngine(database::Descriptions descriptions, Lookup lookup,
                                             Options options = {});

}  // namespace vordane::odbc

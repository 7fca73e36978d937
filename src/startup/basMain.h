// Process start, before any object exists.
#pragma once

#include "startup/application.h"

namespace vordane::basMain {

enum class Start {
  hostMode,  // started by automation: serve the classes
  window,    // started by hand: the window is shown
  nothing,   // started by hand without a name: the process ends by itself
};

// Finds the directories, opens the language databases and loads the texts. The first failed step ends the
// process at once and without a word: there are no texts yet to say it in.
Start Main(startup::Application& application);

// Shows the window for the exchange that the command line names. Always true; `shown` tells whether it did.
bool StartStandAlone(startup::Application& application, bool& shown);

// Runs at each creation of a layer, before the window is touched. Ends the process when it fails.
void RegisterAddin(startup::Application& application);

}  // namespace vordane::basMain

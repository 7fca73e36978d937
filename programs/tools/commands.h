// The subcommands, each in a file of its own: it declares what it takes and what it does. Exit codes: 0 done,
// 1 failed, 2 wrong usage. Command-line tools speak English of their own.
#pragma once

#include "options/options.h"

namespace vordane::tools {

void declareCapsule(options::Command& command);
void declareCapsulePlay(options::Command& command);
void declareDecode(options::Command& command);
void declareDoctor(options::Command& command);
void declareExport(options::Command& command);
void declareFollow(options::Command& command);
void declareGuide(options::Command& command);
void declareImport(options::Command& command);
void declareInstall(options::Command& command);
void declareLanguage(options::Command& command);
void declareList(options::Command& command);
void declareStore(options::Command& command);
void declareSuite(options::Command& command);
void declareUninstall(options::Command& command);

}  // namespace vordane::tools

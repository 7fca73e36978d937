// The subcommands, each in a file of its own.
#pragma once

#include "command.h"

namespace vordane::tools {

int decode(const Arguments& arguments);
int doctor(const Arguments& arguments);
int exportTables(const Arguments& arguments);
int import(const Arguments& arguments);
int install(const Arguments& arguments);
int language(const Arguments& arguments);
int list(const Arguments& arguments);
int suite(const Arguments& arguments);
int uninstall(const Arguments& arguments);

}  // namespace vordane::tools

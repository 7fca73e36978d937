// The faults that a suite has stored, newest first, for a person, a spreadsheet or a script.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "fault_selection.h"
#include "platform/database.h"

namespace vordane::tools {

struct ListOptions {
  // `lines`: an exchange's line, then its faults, each one line; what a name or text may do to a terminal is
  // shown instead (terminal_text.h). `csv`: every column, lines that end with CR LF, texts that a spreadsheet
  // would run made harmless (csv.h). `json`: one document for programs, a line for each fault (fault_json.h).
  // `count`: the number of faults alone.
  enum class Form : std::uint8_t { lines, csv, json, count };
  Form form = Form::lines;
  FaultSelection selection = {};
};

// `file` is the database's name for messages. Throws ToolError when there is no such exchange or the
// selection's times can't be followed, before anything is written, and DatabaseError.
void listFaults(database::Database& database, const std::string& file, const ListOptions& options,
                std::ostream& out);

}  // namespace vordane::tools

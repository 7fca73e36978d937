// The receipts of alarm resets that a suite has kept, the latest first, for a person, a spreadsheet or a
// script.
#pragma once

#include <ostream>
#include <string>

#include "fault_list.h"
#include "platform/receipts.h"

namespace vordane::tools {

// Of the selection, exchange and times count; a receipt's exchange need not be stored any longer. The forms
// are those of faults: `lines` has a line for each receipt and one for each line of the exchange's answer.
// Throws ToolError as listFaults does, and where the database keeps no receipts; and DatabaseError.
void listReceipts(database::Database& database, const std::string& file, const ListOptions& options,
                  std::ostream& out);

// {"event":"reset","number":..}, on one line without its end.
std::string jsonOf(const database::Receipt& receipt);

}  // namespace vordane::tools

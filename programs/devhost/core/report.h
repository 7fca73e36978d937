// A fault report as a page that a browser opens: the selected exchange's faults in the wanted order, laid
// out by the suite's FAULT.RPT.
#pragma once

#include <string>
#include <string_view>

#include "devhost/core/host.h"
#include "platform/database.h"

namespace vordane::devhost {

struct ReportOutput {
  std::u16string directory;  // empty: beside the layout
  std::u16string printed;    // date and time for the report's head
};

struct PrintedReport {
  std::u16string file;    // empty when nothing was printed
  std::u16string reason;  // why not, as a sentence
  std::size_t faults = 0;
};

// Never throws; the database is opened read-only.
PrintedReport printReport(database::Engine& engine, const ReportRequest& request, const ReportOutput& output);

}  // namespace vordane::devhost

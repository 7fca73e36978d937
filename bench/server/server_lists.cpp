#include "bench/server/server_lists.h"

#include <algorithm>
#include <stdexcept>

#include "bench/common/measure.h"
#include "platform/odbc/link.h"

namespace vordane::bench {
namespace {

bool canBeKept(const Fault& row) {
  return odbc::canTravel(row.fault) && odbc::canTravel(row.alarm) && odbc::canTravel(row.cpu) &&
         odbc::canTravel(row.date) && odbc::canTravel(row.description);
}

}  // namespace

Answer keptAnswerOf(fakes::MemoryStoreForm& form, std::size_t list, std::size_t length) {
  Answer answer = answerOf(list, length);
  const auto rows = rowsOf(form, answer);
  const auto kept =
      static_cast<std::size_t>(std::find_if(rows.begin(), rows.end(), canBeKept) - rows.begin());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (canBeKept(rows[i])) continue;
    for (const std::size_t entry : {0U, 2U, 3U}) answer[4 * i + entry] = answer[4 * kept + entry];
  }
  return answer;
}

double takeByClock(fakes::MemoryStoreForm& form, store::FaultStore& store, const Answer& answer) {
  form.answer.Clear();
  for (const std::u16string& entry : answer) form.answer.AddToList(u"LEA0", entry);
  const double time = seconds([&] { form.ingest(store); });
  const auto lines = form.takeTrace();
  if (std::count(lines.begin(), lines.end(), "Acknowledge") > 0) return time;
  std::string all;
  for (const std::string& line : lines) all += line + "\n";
  throw std::runtime_error("the list was not taken: " + all);
}

}  // namespace vordane::bench

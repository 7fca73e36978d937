// Fault lists that both sides of a crash test know: what the killed process takes in, and what must be found.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "fakes/memory_store_form.h"

namespace vordane::crash {

inline constexpr int faultsInList = 500;
inline constexpr std::u16string_view exchangeName = u"PBX-1";

// The row that fault `number` (from 0, over all lists) becomes: Fault, Alarm, CPU, Date, Description.
using Row = std::vector<std::u16string>;
Row expectedRow(fakes::MemoryStoreForm& form, int number);

// Lets `form` receive list `list` and nothing else: faults list * faultsInList and on.
void receiveList(fakes::MemoryStoreForm& form, int list);

struct Order {
  std::string file, report;  // UTF-8
  int firstList = 0, lists = 1;
  bool slow = false;       // an ingestion takes longer than the time after which its rows are saved
  bool onNetwork = false;  // with the journal of a network share
  bool stays = false;      // the process adds "done" to the report at the end and waits to be killed
};

std::vector<std::string> toArguments(const Order& order);
Order fromArguments(const std::vector<std::string>& arguments);

// Takes the lists in, as the window does, by this engine or by the embedded one. Each thing that is shown or
// told outside is a line of the report, which begins with "ready". Throws DatabaseError.
void takeLists(const Order& order, database::Engine& engine);
void takeLists(const Order& order);

}  // namespace vordane::crash

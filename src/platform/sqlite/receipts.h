// Receipts of resets, in two tables beside the documented ones, made with the first of them:
//
//   VordaneReceipts        a row for each
//   VordaneReceiptEntries  a row for each line of an answer that is kept; Receipt is the Number of its
//   receipt
//
// Plain SQL, without triggers and relations: any SQLite tool reads them. What stands under these names and is
// not what is made here stays as it is, and no receipt is kept then.
#pragma once

#include <memory>

#include "platform/receipts.h"
#include "platform/sqlite/plan.h"

namespace vordane::sqlite {

// Null where the file does not hold the table that tells what is lit. Throws DatabaseError.
std::shared_ptr<database::Receipts> makeReceipts(std::shared_ptr<Opened> opened);

}  // namespace vordane::sqlite

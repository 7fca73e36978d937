// Receipts of resets in a store on a server: tables beside the documented ones, made with the store. Stations
// add to them and change nothing in them.
#pragma once

#include <memory>

#include "platform/description.h"
#include "platform/receipts.h"

namespace vordane::odbc {

class Session;

namespace receiptColumns {
using enum database::ColumnType;
inline constexpr database::ColumnDefinition receipts[] = {
    {u"Number", autoNumber},  {u"Moment", text},       {u"Exchange", text}, {u"Person", text},
    {u"Workstation", text},   {u"Outcome", text},      {u"Code", integer},  {u"Answered", integer},
    {u"Major", shortInteger}, {u"Minor", shortInteger}};
inline constexpr database::ColumnDefinition entries[] = {{u"Receipt", integer}, {u"Place", integer},
                                                         {u"Command", text},    {u"First", text},
                                                         {u"Second", text},     {u"Extra", text}};
}  // namespace receiptColumns

inline constexpr database::TableDefinition receiptTables[] = {
    {u"VordaneReceipts", receiptColumns::receipts}, {u"VordaneReceiptEntries", receiptColumns::entries}};

// Null where the store was made without them.
std::shared_ptr<database::Receipts> makeReceipts(std::shared_ptr<Session> session);

}  // namespace vordane::odbc

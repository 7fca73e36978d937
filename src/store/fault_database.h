// The fault database (FAULT.MDB): its tables and every statement that goes to it, as data.
#pragma once

#include "platform/description.h"
#include "store/sort_orders.h"

namespace vordane::store {

namespace columns {
using enum database::ColumnType;
inline constexpr database::ColumnDefinition exchanges[] = {
    {u"ID", shortAutoNumber}, {u"PBXName", text}, {u"TimeStamp", dateTime}, {u"MJ", yesNo}, {u"MN", yesNo}};
inline constexpr database::ColumnDefinition faults[] = {
    {u"ID", shortInteger}, {u"Fault", text},       {u"Alarm", text},      {u"CPU", text},
    {u"Date", text},       {u"Count", autoNumber}, {u"Description", text}};
}  // namespace columns

inline constexpr database::TableDefinition faultTables[] = {{u"PBXList", columns::exchanges},
                                                            {u"FaultDisplay", columns::faults}};
inline constexpr database::EventTable faultEvents{
    u"FaultDisplay", u"Count", u"ID", u"Date", {u"Fault", u"Alarm", u"CPU"}, u"Description"};
inline constexpr database::LampTable exchangeLamps{u"PBXList", u"PBXName", u"MJ", u"MN"};

inline constexpr database::OwnerTable listedExchanges{u"PBXList", u"ID", u"TimeStamp"};

// Which quoting a text has is part of a statement; a value that holds it breaks the statement, which is
// accepted.
namespace statement {
inline constexpr std::u16string_view allExchanges = u"Select * FROM PBXList";
inline constexpr std::u16string_view addFaults = u"Select * from FaultDisplay";
inline constexpr std::u16string_view exchangesNewestFirst =
    u"SELECT * FROM PBXList Order by [TimeStamp] Desc";
inline constexpr std::u16string_view faultsNewestFirst = u"SELECT * FROM FaultDisplay Order by [Date] Desc";
inline constexpr database::StatementPattern findExchange{u"Select * FROM PBXList WHERE PBXName = \"{}\""};
inline constexpr database::StatementPattern selectExchange{
    u"SELECT * FROM PBXList WHERE PBXName = '{}' AND ID = {}"};
inline constexpr database::StatementPattern findFault{
    u"Select * FROM FaultDisplay WHERE ID = {} AND Fault = '{}' AND CPU = '{}' AND Alarm = '{}' AND Date = "
    u"'{}' AND Description = \"{}\""};
inline constexpr std::u16string_view faultsOfExchange = u"SELECT * FROM FaultDisplay WHERE ID = {}";
inline constexpr std::array<database::StatementPattern, sortClauses.size()> orderedFaults{{
    {faultsOfExchange, sortClauses[0]},
    {faultsOfExchange, sortClauses[1]},
    {faultsOfExchange, sortClauses[2]},
    {faultsOfExchange, sortClauses[3]},
    {faultsOfExchange, sortClauses[4]},
    {faultsOfExchange, sortClauses[5]},
    {faultsOfExchange, sortClauses[6]},
    {faultsOfExchange, sortClauses[7]},
    {faultsOfExchange, sortClauses[8]},
    {faultsOfExchange, sortClauses[9]},
}};
inline constexpr database::StatementPattern deleteExchange{u"DELETE FROM PBXList WHERE ID = {}"};
inline constexpr database::StatementPattern deleteFaults{u"DELETE FROM FaultDisplay WHERE ID = {}"};
}  // namespace statement

inline constexpr database::StatementPattern faultStatements[] = {
    statement::findExchange,     statement::selectExchange,   statement::findFault,
    statement::orderedFaults[0], statement::orderedFaults[1], statement::orderedFaults[2],
    statement::orderedFaults[3], statement::orderedFaults[4], statement::orderedFaults[5],
    statement::orderedFaults[6], statement::orderedFaults[7], statement::orderedFaults[8],
    statement::orderedFaults[9], statement::deleteExchange,   statement::deleteFaults,
};
static_assert(sortClauses.size() == 10);

// Under what a shared store keeps the language of its descriptions.
inline constexpr std::u16string_view languageSubject = u"Language";

inline constexpr database::Description faultDatabase{faultTables, faultStatements, &faultEvents,
                                                     &exchangeLamps, &listedExchanges};

}  // namespace vordane::store

// The databases that the suite's add-ins share, registration (Register.mdb) and schedule options
// (Schedule.mdb): their tables and every statement that goes to them, as data.
#pragma once

#include "platform/description.h"

namespace vordane::settings {

namespace columns {
using enum database::ColumnType;
inline constexpr database::ColumnDefinition registry[] = {
    {u"AppName", text}, {u"MenuName", text}, {u"ItemName", text}, {u"ToolTip", text}, {u"Version", text}};
inline constexpr database::ColumnDefinition options[] = {
    {u"Key", integer}, {u"Wait", integer},     {u"ErrorStop", yesNo}, {u"Count", integer}, {u"Log", yesNo},
    {u"Log2", yesNo},  {u"FileByte", integer}, {u"File", text},       {u"Kind", integer}};
}  // namespace columns

// By which the suite lists this add-in.
inline constexpr std::u16string_view registeredName = u"VORDANE.WRX";

inline constexpr database::TableDefinition registrationTables[] = {{u"Registry", columns::registry}};
inline constexpr database::TableDefinition scheduleTables[] = {{u"Options", columns::options}};

namespace statement {
inline constexpr database::StatementPattern registration{u"SELECT * FROM Registry WHERE AppName = \"{}\""};
inline constexpr database::StatementPattern options{u"SELECT * FROM Options WHERE Key = {}"};
}  // namespace statement

inline constexpr database::StatementPattern registrationStatements[] = {statement::registration};
inline constexpr database::StatementPattern scheduleStatements[] = {statement::options};

inline constexpr database::Description registrationDatabase{registrationTables, registrationStatements};
inline constexpr database::Description scheduleDatabase{scheduleTables, scheduleStatements};

}  // namespace vordane::settings

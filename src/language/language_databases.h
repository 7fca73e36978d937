// The language databases (VORDANE.LNG and Common.LNG): their tables and every statement that goes to them, as
// data.
#pragma once

#include "platform/description.h"

namespace vordane::language {

namespace columns {
using enum database::ColumnType;
inline constexpr database::ColumnDefinition forms[] = {
    {u"ObjectName", text}, {u"Caption", text}, {u"FontName", text}, {u"FontSize", number}};
inline constexpr database::ColumnDefinition controls[] = {
    {u"FormName", text}, {u"ObjectName", text}, {u"Index", integer},   {u"Caption", text},
    {u"FontName", text}, {u"FontSize", number}, {u"ToolTipText", text}};
inline constexpr database::ColumnDefinition comboBoxes[] = {
    {u"FormName", text}, {u"ObjectName", text},  {u"Index", integer}, {u"ListIndex", integer},
    {u"List", text},     {u"ItemData", integer}, {u"Visible", yesNo}};
inline constexpr database::ColumnDefinition grids[] = {{u"FormName", text},
                                                       {u"ObjectName", text},
                                                       {u"Index", integer},
                                                       {u"ColIndex", integer},
                                                       {u"Caption", text}};
inline constexpr database::ColumnDefinition project[] = {{u"EXEName", text},
                                                         {u"Title", text},
                                                         {u"OleServerBusyMsgTitle", text},
                                                         {u"OleServerBusyMsgText", text},
                                                         {u"OleRequestPendingMsgTitle", text},
                                                         {u"OleRequestPendingMsgText", text}};
inline constexpr database::ColumnDefinition messages[] = {{u"ID", integer}, {u"Caption", text}};
inline constexpr database::ColumnDefinition boxes[] = {{u"MsgNo", integer}, {u"Prompt", text},
                                                       {u"Buttons", text},  {u"Title", text},
                                                       {u"HelpFile", text}, {u"Context", text}};
inline constexpr database::ColumnDefinition pictures[] = {{u"FormName", text},  {u"ObjectName", text},
                                                          {u"Index", integer},  {u"FileName", text},
                                                          {u"BasePanel", text}, {u"BasePanelIndex", integer}};
inline constexpr database::ColumnDefinition pictureSets[] = {
    {u"ID", integer}, {u"DefaultName", text}, {u"FileName", text}};
inline constexpr database::ColumnDefinition help[] = {
    {u"FormName", text}, {u"ObjectName", text}, {u"HelpText", text}};
}  // namespace columns

inline constexpr database::TableDefinition ownTables[] = {
    {u"tForms", columns::forms},     {u"tControls", columns::controls}, {u"tComboBoxDT", columns::comboBoxes},
    {u"tSSGridsHD", columns::grids}, {u"tProject", columns::project},   {u"tMessages", columns::messages},
    {u"tMsgBox", columns::boxes},    {u"tPicture", columns::pictures}};
inline constexpr database::TableDefinition commonTables[] = {{u"tMsgBox", columns::boxes},
                                                             {u"PictureFileName", columns::pictureSets}};
// What's This has a table of its own beside them, which a language database may lack.
inline constexpr database::TableDefinition helpTable{u"tHelp", columns::help};

namespace statement {
using Pattern = database::StatementPattern;
inline constexpr Pattern form{u"select Caption,FontName,FontSize from tForms where ObjectName = '{}'"};
inline constexpr Pattern controls{
    u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls where FormName = '{}'"};
inline constexpr Pattern lists{
    u"select ObjectName,Index,List,ItemData,Visible from tComboBoxDT where FormName = '{}' ORDER BY "
    u"ListIndex"};
inline constexpr Pattern headings{
    u"select ObjectName,Index,ColIndex,Caption from tSSGridsHD where FormName = '{}'"};
inline constexpr Pattern project{u"select * from tProject where EXEName = '{}'"};
inline constexpr Pattern shortBox{u"select Prompt,Buttons,Title from tMsgBox where MsgNo = {}"};
inline constexpr Pattern box{
    u"select Prompt, Buttons, Title, HelpFile, Context from tMsgBox where MsgNo = {}"};
inline constexpr Pattern pictures{
    u"select ObjectName,Index,FileName,BasePanel,BasePanelIndex from tPicture where FormName = '{}'"};
inline constexpr Pattern pictureSet{u"Select * From PictureFileName Where  ID = {}"};
inline constexpr Pattern help{u"select ObjectName,HelpText from tHelp where FormName = '{}'"};
// For a table by its name, given twice: no value is in it but the number -1, by which engines know it.
inline constexpr Pattern numberedTexts{u"SELECT * FROM {} UNION SELECT -1, COUNT(*) FROM {} ORDER BY ID"};
}  // namespace statement

inline constexpr database::StatementPattern ownStatements[] = {
    statement::form,    statement::controls, statement::lists, statement::headings,
    statement::project, statement::shortBox, statement::box,   statement::pictures};
inline constexpr database::StatementPattern commonStatements[] = {statement::shortBox, statement::box,
                                                                  statement::pictureSet};
inline constexpr database::StatementPattern helpStatements[] = {statement::help};

inline constexpr database::Description ownDatabase{ownTables, ownStatements};
inline constexpr database::Description commonDatabase{commonTables, commonStatements};
inline constexpr database::Description helpPart{{&helpTable, 1}, helpStatements};

}  // namespace vordane::language

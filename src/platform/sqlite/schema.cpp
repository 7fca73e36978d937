#include "platform/sqlite/schema.h"

#include <filesystem>
#include <unordered_map>

#include "platform/file_moves.h"
#include "platform/sqlite/connection.h"
#include "platform/sqlite/errors.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

using enum ColumnType;

constexpr ColumnDefinition pbxList[] = {
    {u"ID", autoNumber}, {u"PBXName", text}, {u"TimeStamp", dateTime}, {u"MJ", yesNo}, {u"MN", yesNo}};
constexpr ColumnDefinition faultDisplay[] = {{u"ID", integer},      {u"Fault", text}, {u"Alarm", text},
                                             {u"CPU", text},        {u"Date", text},  {u"Count", autoNumber},
                                             {u"Description", text}};
constexpr ColumnDefinition forms[] = {
    {u"ObjectName", text}, {u"Caption", text}, {u"FontName", text}, {u"FontSize", number}};
constexpr ColumnDefinition controls[] = {{u"FormName", text},   {u"ObjectName", text}, {u"Index", integer},
                                         {u"Caption", text},    {u"FontName", text},   {u"FontSize", number},
                                         {u"ToolTipText", text}};
constexpr ColumnDefinition comboBoxes[] = {
    {u"FormName", text}, {u"ObjectName", text},  {u"Index", integer}, {u"ListIndex", integer},
    {u"List", text},     {u"ItemData", integer}, {u"Visible", yesNo}};
constexpr ColumnDefinition grids[] = {{u"FormName", text},
                                      {u"ObjectName", text},
                                      {u"Index", integer},
                                      {u"ColIndex", integer},
                                      {u"Caption", text}};
constexpr ColumnDefinition project[] = {{u"EXEName", text},
                                        {u"Title", text},
                                        {u"OleServerBusyMsgTitle", text},
                                        {u"OleServerBusyMsgText", text},
                                        {u"OleRequestPendingMsgTitle", text},
                                        {u"OleRequestPendingMsgText", text}};
constexpr ColumnDefinition messages[] = {{u"ID", integer}, {u"Caption", text}};
constexpr ColumnDefinition boxes[] = {{u"MsgNo", integer}, {u"Prompt", text},   {u"Buttons", text},
                                      {u"Title", text},    {u"HelpFile", text}, {u"Context", text}};
constexpr ColumnDefinition pictures[] = {{u"FormName", text},  {u"ObjectName", text},
                                         {u"Index", integer},  {u"FileName", text},
                                         {u"BasePanel", text}, {u"BasePanelIndex", integer}};
constexpr ColumnDefinition pictureSets[] = {{u"ID", integer}, {u"DefaultName", text}, {u"FileName", text}};
constexpr ColumnDefinition registry[] = {
    {u"AppName", text}, {u"MenuName", text}, {u"ItemName", text}, {u"ToolTip", text}, {u"Version", text}};
constexpr ColumnDefinition options[] = {{u"Key", integer},      {u"Wait", integer}, {u"ErrorStop", yesNo},
                                        {u"Count", integer},    {u"Log", yesNo},    {u"Log2", yesNo},
                                        {u"FileByte", integer}, {u"File", text},    {u"Kind", integer}};

constexpr TableDefinition faultTables[] = {{u"PBXList", pbxList}, {u"FaultDisplay", faultDisplay}};
constexpr TableDefinition ownLanguageTables[] = {
    {u"tForms", forms},     {u"tControls", controls}, {u"tComboBoxDT", comboBoxes}, {u"tSSGridsHD", grids},
    {u"tProject", project}, {u"tMessages", messages}, {u"tMsgBox", boxes},          {u"tPicture", pictures}};
constexpr TableDefinition commonLanguageTables[] = {{u"tMsgBox", boxes}, {u"PictureFileName", pictureSets}};
constexpr TableDefinition registrationTables[] = {{u"Registry", registry}};
constexpr TableDefinition scheduleTables[] = {{u"Options", options}};

// Texts must be declared so: any other word makes a number of '007'. Yes/No columns hold 0 and -1.
constexpr std::string_view declarationOf(ColumnType type) {
  switch (type) {
    case text:
      return "TEXT";
    case integer:
      return "INTEGER";
    case number:
      return "REAL";
    case yesNo:
      return "BOOLEAN NOT NULL DEFAULT 0";
    case dateTime:
      return "DATETIME";
    case autoNumber:
      return "INTEGER PRIMARY KEY AUTOINCREMENT";
  }
  return "";
}

// While it is written the file has a name of its own beside the final one.
std::filesystem::path temporaryName(const std::filesystem::path& path) {
  std::filesystem::path name = path;
  name += u".new";
  return name;
}

}  // namespace

namespace schema {
std::span<const TableDefinition> faultDatabase() {
  return faultTables;
}
std::span<const TableDefinition> ownLanguage() {
  return ownLanguageTables;
}
std::span<const TableDefinition> commonLanguage() {
  return commonLanguageTables;
}
std::span<const TableDefinition> registration() {
  return registrationTables;
}
std::span<const TableDefinition> schedule() {
  return scheduleTables;
}
}  // namespace schema

struct DatabaseWriter::State {
  std::filesystem::path path, temporary;
  std::unique_ptr<Connection> connection;
  std::unordered_map<std::u16string, Statement> inserts;
};

DatabaseWriter::DatabaseWriter(std::u16string_view path, bool replace) : state_(std::make_unique<State>()) {
  state_->path = path;
  state_->temporary = temporaryName(state_->path);
  std::error_code failure;
  if (!replace && std::filesystem::exists(state_->path, failure)) fail(number::alreadyExists, path);
  std::filesystem::remove(state_->temporary, failure);
  sqlite3* raw = nullptr;
  const int result =
      sqlite3_open_v2(text::toUtf8(state_->temporary.u16string()).c_str(), &raw,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXRESCODE, nullptr);
  Handle handle(raw);
  if (result != SQLITE_OK) failWith(result);
  // Texts keep every UTF-16 unit as it stands. Nothing is saved in between, so no journal is of use.
  constexpr const char* beginning = "PRAGMA encoding = 'UTF-16le'; PRAGMA journal_mode = MEMORY; BEGIN";
  if (sqlite3_exec(handle.get(), beginning, nullptr, nullptr, nullptr) != SQLITE_OK)
    failWith(sqlite3_extended_errcode(handle.get()));
  state_->connection = std::make_unique<Connection>(std::move(handle), false, Options{});
}

DatabaseWriter::~DatabaseWriter() {
  if (!state_->connection) return;
  state_->inserts.clear();
  state_->connection.reset();
  std::error_code failure;
  std::filesystem::remove(state_->temporary, failure);
}

void DatabaseWriter::createTable(const TableDefinition& table) {
  std::string columns;
  for (const ColumnDefinition& column : table.columns) {
    if (!columns.empty()) columns += ", ";
    columns += quote(column.name) + " " + std::string(declarationOf(column.type));
  }
  state_->connection->runMaintenance(("CREATE TABLE " + quote(table.name) + " (" + columns + ")").c_str());
  state_->connection->loadTables();
}

void DatabaseWriter::createTables(std::span<const TableDefinition> tables) {
  for (const TableDefinition& table : tables) createTable(table);
}

void DatabaseWriter::insert(std::u16string_view name, std::span<const database::Value> row) {
  Connection& connection = *state_->connection;
  const Table& table = connection.table(name);
  if (row.size() != table.columns.size()) fail(number::columnCount);
  Statement& insert = state_->inserts[table.folded];
  if (!insert) {
    std::string marks;
    for (std::size_t i = 0; i < row.size(); ++i) marks += i == 0 ? "?" : ", ?";
    insert = Statement(connection, "INSERT INTO " + table.quoted + " VALUES (" + marks + ")");
  }
  std::vector<database::Value> values;
  for (std::size_t i = 0; i < row.size(); ++i) values.push_back(fit(table.columns[i], row[i], false));
  for (std::size_t i = 0; i < row.size(); ++i) insert.bind(static_cast<int>(i) + 1, values[i]);
  insert.run();
}

void DatabaseWriter::setLastAutoNumber(std::u16string_view name, std::int64_t last) {
  Connection& connection = *state_->connection;
  connection.keepNumber(connection.table(name), last);
}

void DatabaseWriter::finish() {
  state_->inserts.clear();
  state_->connection->commit();
  state_->connection.reset();
  if (!platform::moveFile(state_->temporary, state_->path)) return;
  std::error_code ignored;
  std::filesystem::remove(state_->temporary, ignored);
  fail(number::noPermission, state_->path.u16string());
}

void createDatabase(std::u16string_view path, std::span<const TableDefinition> tables, bool replace) {
  DatabaseWriter writer(path, replace);
  writer.createTables(tables);
  writer.finish();
}

}  // namespace vordane::sqlite

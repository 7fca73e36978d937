#include "platform/access/access_file.h"

// glib first: the library's header needs its types.
#include <glib.h>
#include <mdbtools.h>

#include <array>
#include <cstring>
#include <fstream>
#include <memory>
#include <span>

#include "platform/access/jet_text.h"
#include "text/utf8.h"

namespace vordane::access {
namespace {

struct CloseFile {
  void operator()(MdbHandle* file) const { mdb_close(file); }
};
struct FreeTable {
  void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
using FileHandle = std::unique_ptr<MdbHandle, CloseFile>;
using TableHandle = std::unique_ptr<MdbTableDef, FreeTable>;

constexpr int rowStartMask = 0x1FFF;    // the upper bits of a row's start are flags
constexpr int autoNumberOffset = 20;    // of the last auto-number in a table's definition page
constexpr std::size_t memoHeader = 12;  // length and place of a long value
constexpr std::size_t chunk = 65536;    // more than any page holds
constexpr std::size_t longestMemo = 256U * 1024 * 1024;

ColumnType typeOf(const MdbColumn& column) {
  switch (column.col_type) {
    case MDB_BOOL:
      return ColumnType::boolean;
    case MDB_BYTE:
      return ColumnType::byte;
    case MDB_INT:
      return ColumnType::integer;
    case MDB_LONGINT:
      return ColumnType::longInteger;
    case MDB_FLOAT:
      return ColumnType::single;
    case MDB_DOUBLE:
      return ColumnType::doubleFloat;
    case MDB_TEXT:
      return ColumnType::text;
    case MDB_MEMO:
      return ColumnType::memo;
    case MDB_DATETIME:
      return ColumnType::dateTime;
    default:
      throw AccessError(std::string("column ") + column.name + " has a type that is not imported");
  }
}

MdbColumn& columnAt(const MdbTableDef& table, unsigned position) {
  auto* column = static_cast<MdbColumn*>(g_ptr_array_index(table.columns, position));
  if (column == nullptr) throw AccessError("a column definition is damaged");
  return *column;
}

class TableReader {
 public:
  TableReader(MdbHandle& file, MdbTableDef& table) : file_(file), table_(table) {}

  Table describe(unsigned long page) {
    Table description;
    description.name = text::fromUtf8(table_.name);
    description.rowCount = table_.num_rows;
    for (unsigned i = 0; i < table_.num_cols; ++i) {
      const MdbColumn& column = columnAt(table_, i);
      const ColumnType type = typeOf(column);
      description.columns.push_back({text::fromUtf8(column.name), type,
                                     type == ColumnType::text ? column.col_size / 2 : 0,
                                     column.is_long_auto != 0});
    }
    if (mdb_read_pg(&file_, page) > 0)
      description.lastAutoNumber = static_cast<std::int32_t>(mdb_pg_get_int32(&file_, autoNumberOffset));
    return description;
  }

  std::uint32_t readRows(Visitor& visitor) {
    std::uint32_t rows = 0;
    mdb_rewind_table(&table_);
    while (mdb_fetch_row(&table_) != 0) {
      visitor.row(readRow());
      ++rows;
    }
    return rows;
  }

 private:
  // The library's own conversion cuts long texts, loses what lies beyond the Basic Multilingual Plane and
  // shows a Null as an empty text; so the row's fields are taken apart here.
  std::vector<Value> readRow() {
    int start = 0;
    std::size_t length = 0;
    std::array<MdbField, MDB_MAX_COLS> fields{};
    if (table_.cur_row == 0 ||
        mdb_find_row(&file_, static_cast<int>(table_.cur_row - 1), &start, &length) != 0 ||
        mdb_crack_row(&table_, start & rowStartMask, length, fields.data()) < 0)
      throw AccessError("a row is damaged");
    std::vector<Value> values;
    values.reserve(table_.num_cols);
    for (unsigned i = 0; i < table_.num_cols; ++i)
      values.push_back(readField(columnAt(table_, i), fields[i]));
    return values;
  }

  Value readField(MdbColumn& column, const MdbField& field) {
    const ColumnType type = typeOf(column);
    // A Yes/No column has no bytes of its own: the flag is the value.
    if (type == ColumnType::boolean) return field.is_null == 0;
    if (field.is_null != 0) return automation::Null{};
    if (field.start < 0 || field.siz < 0 || field.start + field.siz > static_cast<int>(file_.fmt->pg_size))
      throw AccessError("a field reaches beyond its page");
    const std::span bytes(file_.pg_buf + field.start, static_cast<std::size_t>(field.siz));
    switch (type) {
      case ColumnType::byte:
        return number<std::uint8_t>(bytes);
      case ColumnType::integer:
        return number<std::int16_t>(bytes);
      case ColumnType::longInteger:
        return number<std::int32_t>(bytes);
      case ColumnType::single:
        return number<float>(bytes);
      case ColumnType::doubleFloat:
        return number<double>(bytes);
      case ColumnType::dateTime:
        return automation::Date{number<double>(bytes)};
      case ColumnType::memo:
        return memo(column, field, bytes);
      default:
        return jetText(bytes);
    }
  }

  template <class Number>
  static Number number(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < sizeof(Number)) throw AccessError("a number is cut short");
    Number value;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
  }

  std::u16string memo(MdbColumn& column, const MdbField& field, std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return {};
    if (bytes.size() < memoHeader) throw AccessError("a long text is cut short");
    std::array<std::uint8_t, memoHeader> header{};
    std::memcpy(header.data(), bytes.data(), memoHeader);
    std::uint32_t length = 0;
    std::memcpy(&length, header.data(), sizeof length);
    length &= 0x3FFFFFFF;
    if (length > longestMemo) throw AccessError("a long text is too long");

    column.cur_value_start = field.start;
    column.cur_value_len = field.siz;
    std::array<std::uint8_t, chunk> buffer;
    column.bind_ptr = buffer.data();
    std::vector<std::uint8_t> whole;
    whole.reserve(length);
    std::size_t got = mdb_ole_read(&file_, &column, header.data(), buffer.size());
    while (got > 0 && whole.size() <= length) {
      whole.insert(whole.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(got));
      if (whole.size() >= length) break;
      got = mdb_ole_read_next(&file_, &column, header.data());
    }
    column.bind_ptr = nullptr;
    if (whole.size() != length) throw AccessError("a long text is not whole");
    return jetText(whole);
  }

  MdbHandle& file_;
  MdbTableDef& table_;
};

void readTable(MdbHandle& file, MdbCatalogEntry& entry, Visitor& visitor) {
  const TableHandle table(mdb_read_table(&entry));
  if (!table || mdb_read_columns(table.get()) == nullptr)
    throw AccessError(std::string("table ") + entry.object_name + " is damaged");
  TableReader reader(file, *table);
  const Table description = reader.describe(entry.table_pg);
  visitor.beginTable(description);
  const std::uint32_t rows = reader.readRows(visitor);
  if (rows != description.rowCount)
    throw AccessError(std::string("table ") + entry.object_name + " says it has " +
                      std::to_string(description.rowCount) + " rows, but " + std::to_string(rows) +
                      " were found");
  visitor.endTable();
}

}  // namespace

bool isAccessFile(const std::string& path) {
  static constexpr char mark[] = "\0\1\0\0Standard Jet DB";
  char head[sizeof mark - 1] = {};
  std::ifstream file(path, std::ios::binary);
  return file.read(head, sizeof head) && std::memcmp(head, mark, sizeof head) == 0;
}

struct AccessFile::Open {
  std::string path;
  FileHandle file;
};

AccessFile::AccessFile(const std::string& path) {
  if (!isAccessFile(path)) throw AccessError(path + " is no Access file");
  FileHandle file(mdb_open(path.c_str(), MDB_NOFLAGS));
  if (!file) throw AccessError(path + " can't be opened");
  if (file->f->jet_version != MDB_VER_JET4)
    throw AccessError(path + " is not of the Access 2000 to 2003 format");
  open_ = std::make_unique<Open>(Open{path, std::move(file)});
}

AccessFile::~AccessFile() = default;

void AccessFile::read(Visitor& visitor) {
  const GPtrArray* catalog = mdb_read_catalog(open_->file.get(), MDB_TABLE);
  if (catalog == nullptr) throw AccessError(open_->path + ": the list of tables is damaged");
  for (unsigned i = 0; i < catalog->len; ++i) {
    auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(catalog, i));
    if (entry != nullptr && mdb_is_user_table(entry) != 0) readTable(*open_->file, *entry, visitor);
  }
}

void readAccessFile(const std::string& path, Visitor& visitor) {
  AccessFile(path).read(visitor);
}

}  // namespace vordane::access

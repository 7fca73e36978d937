#include "platform/access/value_stream.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace vordane::access {
namespace {

enum class Tag : std::uint8_t { table = 1, row, endTable, error, endOfFile };

constexpr std::uint32_t longestText = 256U * 1024 * 1024;  // in characters; a memo of one byte for each
constexpr std::uint32_t longestName = 256, longestError = 4096;
constexpr std::uint32_t mostColumns = 256;
constexpr std::int32_t widestText = 255;

template <class T>
void add(std::string& out, const T& value) {
  static_assert(std::is_trivially_copyable_v<T>);
  out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void addText(std::string& out, std::u16string_view text) {
  add(out, static_cast<std::uint32_t>(text.size()));
  out.append(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
}

void addValue(std::string& out, const Value& value) {
  add(out, static_cast<std::uint8_t>(value.index()));
  std::visit(
      [&](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::u16string>) {
          addText(out, held);
        } else if constexpr (std::is_arithmetic_v<Held>) {
          add(out, held);
        } else if constexpr (std::is_same_v<Held, automation::Date>) {
          add(out, held.days);
        }
      },
      value);
}

// The least and the greatest moment an Access file knows: the years 100 to 9999.
constexpr double firstDay = -657434, dayBehindTheLast = 2958466;

// The kinds of value that a column's rows hold, as they stand in the variant.
bool fits(ColumnType type, const Value& value) {
  if (automation::isNull(value)) return type != ColumnType::boolean;
  switch (type) {
    case ColumnType::boolean:
      return std::holds_alternative<bool>(value);
    case ColumnType::byte:
      return std::holds_alternative<std::uint8_t>(value);
    case ColumnType::integer:
      return std::holds_alternative<std::int16_t>(value);
    case ColumnType::longInteger:
      return std::holds_alternative<std::int32_t>(value);
    case ColumnType::single:
      return std::holds_alternative<float>(value);
    case ColumnType::doubleFloat:
      return std::holds_alternative<double>(value);
    case ColumnType::dateTime:
      return std::holds_alternative<automation::Date>(value);
    case ColumnType::text:
    case ColumnType::memo:
      return std::holds_alternative<std::u16string>(value);
  }
  return false;
}

// The child may have been taken over by the file it reads: nothing that it says is taken for more than bytes.
class Reader {
 public:
  explicit Reader(const std::function<void(void*, std::size_t)>& receive) : receive_(receive) {}

  // Only types of which every pattern of bits is a value.
  template <class T>
  T read() {
    static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);
    T value;
    receive_(&value, sizeof value);
    return value;
  }

  bool readBool() {
    const auto byte = read<std::uint8_t>();
    if (byte > 1) throw AccessError("the reader sent a Yes/No that is neither");
    return byte == 1;
  }

  // Memory grows with what comes, not with the length that is announced.
  std::u16string readText(std::uint32_t longest = longestText) {
    constexpr std::uint32_t piece = 32768;
    auto left = read<std::uint32_t>();
    if (left > longest) throw AccessError("the reader sent a text of impossible length");
    std::u16string text;
    while (left > 0) {
      const std::uint32_t count = std::min(left, piece);
      text.resize(text.size() + count);
      receive_(text.data() + text.size() - count, count * sizeof(char16_t));
      left -= count;
    }
    return text;
  }

  // Null, Yes/No, numbers and texts are all that a row holds; they stand in the variant's order.
  Value readValue() {
    switch (read<std::uint8_t>()) {
      case 1:
        return automation::Null{};
      case 3:
        return readBool();
      case 4:
        return read<std::uint8_t>();
      case 5:
        return read<std::int16_t>();
      case 6:
        return read<std::int32_t>();
      case 7:
        return read<float>();
      case 8:
        return read<double>();
      case 9:
        return readText();
      case 11:
        return readDate();
      default:
        throw AccessError("the reader sent a value of unknown type");
    }
  }

  Table readTable() {
    Table table;
    table.name = readText(longestName);
    table.rowCount = read<std::uint32_t>();
    table.lastAutoNumber = read<std::int32_t>();
    const auto columns = read<std::uint32_t>();
    if (columns > mostColumns) throw AccessError("the reader sent too many columns");
    for (std::uint32_t i = 0; i < columns; ++i) table.columns.push_back(readColumn());
    return table;
  }

  std::string readError() {
    std::string what;
    for (const char16_t byte : readText(longestError)) what += static_cast<char>(byte);
    return what;
  }

 private:
  automation::Date readDate() {
    const auto days = read<double>();
    if (!(days >= firstDay && days < dayBehindTheLast)) throw AccessError("a date is beyond the calendar");
    return automation::Date{days};
  }

  Column readColumn() {
    Column column;
    column.name = readText(longestName);
    const auto type = read<std::uint8_t>();
    if (type > static_cast<std::uint8_t>(ColumnType::dateTime))
      throw AccessError("the reader sent a column of unknown type");
    column.type = static_cast<ColumnType>(type);
    column.size = read<std::int32_t>();
    if (column.size < 0 || column.size > widestText)
      throw AccessError("the reader sent a column of impossible size");
    column.autoNumber = readBool();
    return column;
  }

  const std::function<void(void*, std::size_t)>& receive_;
};

// Tables one behind the other, each with as many rows as it says, each row with a value for each column.
class Tables {
 public:
  Tables(Reader& reader, Visitor& visitor) : reader_(reader), visitor_(visitor) {}

  void begin() {
    if (open_) throw AccessError("the reader sent a table inside another");
    table_ = reader_.readTable();
    rows_ = 0;
    open_ = true;
    visitor_.beginTable(table_);
  }

  void row() {
    if (!open_) throw AccessError("the reader sent a row outside a table");
    if (rows_ == table_.rowCount) throw AccessError("the reader sent more rows than the table has");
    ++rows_;
    values_.clear();
    for (const Column& column : table_.columns) {
      values_.push_back(reader_.readValue());
      if (!fits(column.type, values_.back()))
        throw AccessError("the reader sent a value that does not fit its column");
    }
    visitor_.row(values_);
  }

  void end() {
    if (!open_) throw AccessError("the reader ended a table outside one");
    if (rows_ != table_.rowCount) throw AccessError("the reader sent fewer rows than the table has");
    open_ = false;
    visitor_.endTable();
  }

  void endOfFile() const {
    if (open_) throw AccessError("the reader ended inside a table");
  }

 private:
  Reader& reader_;
  Visitor& visitor_;
  Table table_;
  std::vector<Value> values_;
  std::uint32_t rows_ = 0;
  bool open_ = false;
};

}  // namespace

void StreamWriter::beginTable(const Table& table) {
  std::string out;
  add(out, Tag::table);
  addText(out, table.name);
  add(out, table.rowCount);
  add(out, table.lastAutoNumber);
  add(out, static_cast<std::uint32_t>(table.columns.size()));
  for (const Column& column : table.columns) {
    addText(out, column.name);
    add(out, column.type);
    add(out, column.size);
    add(out, column.autoNumber);
  }
  send_(out);
}

void StreamWriter::row(const std::vector<Value>& values) {
  std::string out;
  add(out, Tag::row);
  for (const Value& value : values) addValue(out, value);
  send_(out);
}

void StreamWriter::endTable() {
  std::string out;
  add(out, Tag::endTable);
  send_(out);
}

void StreamWriter::error(std::string_view what) {
  std::string out;
  add(out, Tag::error);
  std::u16string bytes;  // one byte in each
  for (const char byte : what.substr(0, longestError)) bytes += static_cast<unsigned char>(byte);
  addText(out, bytes);
  send_(out);
}

void StreamWriter::endOfFile() {
  std::string out;
  add(out, Tag::endOfFile);
  send_(out);
}

void readStream(const std::function<void(void* buffer, std::size_t size)>& receive, Visitor& visitor) {
  Reader reader(receive);
  Tables tables(reader, visitor);
  for (;;) {
    switch (static_cast<Tag>(reader.read<std::uint8_t>())) {
      case Tag::table:
        tables.begin();
        break;
      case Tag::row:
        tables.row();
        break;
      case Tag::endTable:
        tables.end();
        break;
      case Tag::error:
        throw AccessError(reader.readError());
      case Tag::endOfFile:
        return tables.endOfFile();
      default:
        throw AccessError("the reader sent something unknown");
    }
  }
}

}  // namespace vordane::access

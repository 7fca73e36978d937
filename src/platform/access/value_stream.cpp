#include "platform/access/value_stream.h"

#include <cstdint>
#include <type_traits>

namespace vordane::access {
namespace {

enum class Tag : std::uint8_t { table = 1, row, endTable, error, endOfFile };

constexpr std::uint32_t longestText = 512U * 1024 * 1024;
constexpr std::uint32_t mostColumns = 1024;

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

class Reader {
 public:
  explicit Reader(const std::function<void(void*, std::size_t)>& receive) : receive_(receive) {}

  template <class T>
  T read() {
    T value;
    receive_(&value, sizeof value);
    return value;
  }

  std::u16string readText() {
    const auto size = read<std::uint32_t>();
    if (size > longestText) throw AccessError("the reader sent a text of impossible length");
    std::u16string text(size, u'\0');
    if (size > 0) receive_(text.data(), size * sizeof(char16_t));
    return text;
  }

  // Null, Yes/No, numbers and texts are all that a row holds; they stand in the variant's order.
  Value readValue() {
    switch (read<std::uint8_t>()) {
      case 1:
        return automation::Null{};
      case 3:
        return read<bool>();
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
        return automation::Date{read<double>()};
      default:
        throw AccessError("the reader sent a value of unknown type");
    }
  }

  Table readTable() {
    Table table;
    table.name = readText();
    table.rowCount = read<std::uint32_t>();
    table.lastAutoNumber = read<std::int32_t>();
    const auto columns = read<std::uint32_t>();
    if (columns > mostColumns) throw AccessError("the reader sent too many columns");
    for (std::uint32_t i = 0; i < columns; ++i) {
      Column column;
      column.name = readText();
      column.type = read<ColumnType>();
      column.size = read<std::int32_t>();
      column.autoNumber = read<bool>();
      table.columns.push_back(std::move(column));
    }
    return table;
  }

 private:
  const std::function<void(void*, std::size_t)>& receive_;
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
  addText(out, std::u16string(what.begin(), what.end()));
  send_(out);
}

void StreamWriter::endOfFile() {
  std::string out;
  add(out, Tag::endOfFile);
  send_(out);
}

void readStream(const std::function<void(void* buffer, std::size_t size)>& receive, Visitor& visitor) {
  Reader reader(receive);
  std::size_t columns = 0;
  std::vector<Value> values;
  for (;;) {
    switch (reader.read<Tag>()) {
      case Tag::table: {
        const Table table = reader.readTable();
        columns = table.columns.size();
        visitor.beginTable(table);
        break;
      }
      case Tag::row:
        values.clear();
        for (std::size_t i = 0; i < columns; ++i) values.push_back(reader.readValue());
        visitor.row(values);
        break;
      case Tag::endTable:
        visitor.endTable();
        break;
      case Tag::error: {
        const std::u16string what = reader.readText();
        throw AccessError(std::string(what.begin(), what.end()));
      }
      case Tag::endOfFile:
        return;
      default:
        throw AccessError("the reader sent something unknown");
    }
  }
}

}  // namespace vordane::access

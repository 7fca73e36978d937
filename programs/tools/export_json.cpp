#include "export_json.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <type_traits>
#include <variant>

#include "text/utf8.h"

namespace vordane::tools {
namespace {

nlohmann::json jsonValue(const access::Value& value) {
  if (automation::isNull(value) || automation::isEmpty(value)) return nullptr;
  return std::visit(
      [&](const auto& one) -> nlohmann::json {
        using Type = std::decay_t<decltype(one)>;
        if constexpr (std::is_same_v<Type, bool> || std::is_same_v<Type, double>)
          return one;
        else if constexpr (std::is_same_v<Type, float>)
          return static_cast<double>(one);
        else if constexpr (std::is_integral_v<Type>)
          return static_cast<std::int64_t>(one);
        else
          return text::toUtf8(automation::toText(value));
      },
      value);
}

}  // namespace

void JsonExport::begin(const access::Table& table, std::string& out) {
  nlohmann::ordered_json head{
      {"format", "vordane table"}, {"version", 1}, {"table", text::toUtf8(table.name)}};
  head["columns"] = nlohmann::ordered_json::array();
  for (const access::Column& column : table.columns) head["columns"].push_back(text::toUtf8(column.name));
  out += head.dump();
  out.back() = ',';  // goes on with the rows
  out += "\"rows\":[";
  comma_ = false;
}

void JsonExport::append(const std::vector<access::Value>& values, std::string& out) {
  nlohmann::json row = nlohmann::json::array();
  for (const access::Value& value : values) row.push_back(jsonValue(value));
  out += std::exchange(comma_, true) ? ",\n" : "\n";
  out += row.dump();
}

}  // namespace vordane::tools

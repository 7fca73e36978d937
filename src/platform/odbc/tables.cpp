#include "platform/odbc/tables.h"

#include <array>

#include "platform/described.h"
#include "platform/odbc/errors.h"
#include "platform/odbc/notes.h"
#include "text/text.h"

namespace vordane::odbc {
namespace {

using database::ColumnDefinition;
using database::ColumnType;
using database::EventTable;

// Conditions of the statement that looks for an equal event.
constexpr std::size_t identityParts = 6;

ColumnType typeOf(database::Descriptions descriptions, std::u16string_view table,
                  std::u16string_view column) {
  const ColumnDefinition* described = database::findColumn(descriptions, table, column);
  return described == nullptr ? ColumnType::text : described->type;
}

// Where a column stands among the shape's conditions, and so among its values; nothing when it is not there.
std::optional<std::size_t> conditionOn(const jet::Shape& shape, std::u16string_view column) {
  for (std::size_t i = 0; i < shape.conditions.size(); ++i)
    if (text::equalIgnoringCase(shape.conditions[i].column, column)) return i;
  return std::nullopt;
}

bool isOrderOfTime(const std::vector<jet::Order>& orders, const EventTable& events) {
  return orders.size() > 1 && text::equalIgnoringCase(orders[0].column, events.moment) &&
         text::equalIgnoringCase(orders[1].column, events.key) &&
         orders[0].descending == orders[1].descending;
}

bool isNewestFirst(const jet::Shape& shape, const EventTable& events) {
  return shape.conditions.empty() && shape.orders.size() == 1 && shape.orders[0].descending &&
         text::equalIgnoringCase(shape.orders[0].column, events.moment);
}

}  // namespace

std::optional<std::size_t> Table::find(std::u16string_view column) const {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (text::equalIgnoringCase(columns[i].name, column)) return i;
  return std::nullopt;
}

std::size_t Table::column(std::u16string_view name_, int errorNumber) const {
  const auto found = find(name_);
  if (!found) database::fail(errorNumber, name_);
  return *found;
}

std::size_t Plan::resultColumn(std::u16string_view name) const {
  for (std::size_t i = 0; i < names.size(); ++i)
    if (text::equalIgnoringCase(names[i], name)) return i;
  database::fail(number::unknownItem, name);
}

Tables::Tables(const std::vector<Fields>& columns, database::Descriptions descriptions) {
  const database::Description* events = database::findEvents(descriptions);
  const auto owners = events == nullptr ? std::nullopt : ownersOf(*events);
  for (const Fields& row : columns) {
    const std::u16string& name = row.at(0).value();
    if (database::findTable(descriptions, name) == nullptr) continue;
    auto& table = tables_[text::toLower(name)];
    if (!table) table = std::make_unique<Table>();
    table->name = name;
    table->columnNames.push_back(row.at(1).value());
  }
  if (tables_.empty()) database::fail(number::notADatabase);
  for (auto& [folded, table] : tables_) {
    for (const std::u16string& column : table->columnNames) {
      const ColumnType type = typeOf(descriptions, folded, column);
      if (isAutoNumber(type)) table->key = table->columns.size();
      table->columns.push_back({column, type});
    }
    if (events == nullptr) continue;
    if (text::equalIgnoringCase(events->events->table, folded)) {
      table->events = events->events;
      table->owners = owners;
    }
    table->isOwners = owners && text::equalIgnoringCase(owners->table, folded);
    if (table->isOwners) table->owners = owners;
  }
}

const Table& Tables::table(std::u16string_view name) const {
  const auto found = tables_.find(text::toLower(name));
  if (found == tables_.end()) database::fail(number::unknownTable, name);
  return *found->second;
}

const Table* Tables::events() const {
  for (const auto& [folded, table] : tables_)
    if (table->events != nullptr && table->key) return table.get();
  return nullptr;
}

const Plan& Plans::find(std::u16string_view statement, jet::Lifted& lifted) {
  jet::lift(statement, lifted);
  auto found = plans_.find(lifted.shape);
  if (found == plans_.end()) found = plans_.emplace(lifted.shape, make(lifted)).first;
  if (found->second->isUnion() && lifted.literals.at(0).number != -1) database::fail(number::syntax);
  return *found->second;
}

std::unique_ptr<Plan> Plans::make(const jet::Lifted& lifted) const {
  auto plan = std::make_unique<Plan>();
  plan->shape = documented_.shapeOf(lifted);
  plan->table = &tables_.table(plan->shape.table);
  if (plan->isUnion()) {
    planUnion(*plan);
    return plan;
  }
  if (plan->shape.columns.empty())
    for (const ColumnDefinition& column : plan->table->columns) plan->shape.columns.emplace_back(column.name);
  for (const std::u16string& name : plan->shape.columns) {
    const ColumnDefinition& column = plan->table->columns[plan->table->column(name, number::unknownName)];
    plan->names.emplace_back(column.name);
    plan->types.push_back(column.type);
  }
  if (!planEvents(*plan)) planRows(*plan);
  return plan;
}

std::string Plans::columnsOf(const Plan& plan, std::string_view prefix) const {
  const std::string before(prefix);
  std::string all;
  if (plan.table->key)
    all = dialect_.read(before + dialect_.quoted(plan.table->columns[*plan.table->key].name),
                        ColumnType::integer);
  for (std::size_t i = 0; i < plan.names.size(); ++i)
    all += (all.empty() ? "" : ", ") + dialect_.read(before + dialect_.quoted(plan.names[i]), plan.types[i]);
  return all;
}

std::string Plans::conditionsOf(Plan& plan) const {
  std::string all;
  for (const jet::Condition& condition : plan.shape.conditions) {
    const ColumnDefinition& column =
        plan.table->columns[plan.table->column(condition.column, number::unknownName)];
    const std::string name = dialect_.quoted(column.name);
    const bool asText = condition.isText || column.type == ColumnType::text;
    all += all.empty() ? " where " : " and ";
    if (asText) {
      all += dialect_.folded(dialect_.read(name, column.type)) + " = " +
             dialect_.folded(dialect_.parameter(ColumnType::text));
    } else {
      all += name + " = " + dialect_.number();
    }
    plan.values.push_back(plan.values.size());
  }
  return all;
}

// What follows the key never decides; where no key is among them it decides last, so that an order is always
// the same.
std::string Plans::ordersOf(const Plan& plan, std::string_view prefix) const {
  const std::string before(prefix);
  std::string all;
  for (const jet::Order& order : plan.shape.orders) {
    const std::size_t position = plan.table->column(order.column, number::unknownName);
    const ColumnDefinition& column = plan.table->columns[position];
    all += (all.empty() ? "" : ", ") +
           dialect_.ordered(before + dialect_.quoted(column.name), column.type, order.descending);
    if (plan.table->key == position) return " order by " + all;
  }
  if (!all.empty()) all += ", ";
  if (plan.table->key)
    return " order by " + all + before + dialect_.quoted(plan.table->columns[*plan.table->key].name);
  return " order by " + all + before + dialect_.lastOrder();
}

void Plans::planUnion(Plan& plan) const {
  const std::size_t key = plan.table->column(plan.shape.orders.at(0).column, number::unknownName);
  if (plan.table->columns.size() != 2) database::fail(number::columnCount);
  std::string columns, whole;
  for (std::size_t i = 0; i < plan.table->columns.size(); ++i) {
    const ColumnDefinition& column = plan.table->columns[i];
    plan.names.emplace_back(column.name);
    plan.types.push_back(i == key ? column.type : ColumnType::text);
    columns += (i == 0 ? "" : ", ") + dialect_.read(dialect_.quoted(column.name), column.type);
  }
  const std::string table = dialect_.name(plan.table->name);
  const std::string counted = dialect_.read("count(*)", ColumnType::integer);
  plan.rows = "select * from (select a.*, a.k::integer as n from (select " + columns + " from " + table +
              " union select " + (key == 0 ? "'-1', " + counted : counted + ", '-1'") + " from " + table +
              ") as a(" + (key == 0 ? "k, v" : "v, k") + ")) as b order by n nulls first";
}

void Plans::planRows(Plan& plan) const {
  const std::string table = dialect_.name(plan.table->name);
  const std::string conditions = conditionsOf(plan);
  if (plan.shape.verb == jet::Verb::remove) {
    plan.rows = "delete from " + table + conditions;
    return;
  }
  const std::string rest = " from " + table + conditions + ordersOf(plan, "");
  const std::string select = "select " + columnsOf(plan, "");
  plan.rows = select + rest;
  if (!plan.table->key) return;
  const std::string key = dialect_.quoted(plan.table->columns[*plan.table->key].name);
  plan.keys = dialect_.joined("select " + key + rest);
  plan.byKey = plan.table->events != nullptr ? eventsByKey(plan)
                                             : select + " from " + table + " where " + dialect_.oneOf(key);
}

// What the index beside the events answers. False for any other shape.
bool Plans::planEvents(Plan& plan) const {
  const EventTable* events = plan.table->events;
  if (events == nullptr) return false;
  const jet::Shape& shape = plan.shape;
  const bool ofOwner = shape.conditions.size() == 1 && conditionOn(shape, events->owner);
  if (shape.verb == jet::Verb::remove) {
    if (ofOwner) planRemoval(plan);
    return ofOwner;
  }
  if (shape.verb != jet::Verb::select) return false;
  const bool newest = isNewestFirst(shape, *events);
  if (!ofOwner && !newest && shape.conditions.size() != identityParts) return false;
  plan.byKey = eventsByKey(plan);
  if (ofOwner) {
    planOwner(plan);
  } else if (newest) {
    planNewest(plan);
  } else {
    planSame(plan);
  }
  return true;
}

std::string Plans::eventsByKey(const Plan& plan) const {
  const EventTable& events = *plan.table->events;
  const WithNotes notes = withNotes_ ? withNotes(dialect_, events) : WithNotes{};
  return "select " + columnsOf(plan, "f.") + notes.columns + " from " + dialect_.name(plan.table->name) +
         " f" + notes.join + " where " + dialect_.oneOf("f." + dialect_.quoted(events.key));
}

void Plans::planRemoval(Plan& plan) const {
  plan.values = {0};
  plan.rows = "delete from " + dialect_.name(plan.table->name) + " where " +
              dialect_.quoted(plan.table->events->key) + " in (select i.\"Key\" from " +
              dialect_.indexTable() + " i where i.\"Owner\" = " + dialect_.number() + ")";
}

// Rows of the index with their events.
std::string Plans::joinedEvents(const Plan& plan) const {
  return " from " + dialect_.indexTable() + " i join " + dialect_.name(plan.table->name) + " f on f." +
         dialect_.quoted(plan.table->events->key) + " = i.\"Key\"";
}

// The index alone knows the order of time.
void Plans::planOwner(Plan& plan) const {
  plan.values = {0};
  const std::string joined = joinedEvents(plan);
  const std::string where = " where i.\"Owner\" = " + dialect_.number();
  const std::string select = "select " + columnsOf(plan, "f.");
  if (!isOrderOfTime(plan.shape.orders, *plan.table->events)) {
    const std::string order = ordersOf(plan, "f.");
    plan.keys = dialect_.joined("select i.\"Key\"" + joined + where + order);
    plan.rows = select + joined + where + order;
    return;
  }
  const std::string order = plan.shape.orders[0].descending
                                ? " order by i.\"Moment\" desc nulls last, i.\"Key\" desc"
                                : " order by i.\"Moment\" asc nulls first, i.\"Key\"";
  plan.keys = dialect_.joined("select i.\"Key\" from " + dialect_.indexTable() + " i" + where + order);
  plan.rows = select + joined + where + order;
}

void Plans::planNewest(Plan& plan) const {
  plan.special = Plan::Special::newestEvents;
  plan.rows = "select " + columnsOf(plan, "f.") + " from " + dialect_.name(plan.table->name) + " f where f." +
              dialect_.quoted(plan.table->events->key) + " = (" + dialect_.newest() + ")";
  plan.keys = dialect_.joined("select i.\"Key\" from " + dialect_.indexTable() +
                              " i order by i.\"Moment\" desc nulls last, i.\"Key\"");
}

// Of a condition, as the store has it.
std::string Plans::columnOf(const Plan& plan, std::size_t condition) const {
  const std::u16string_view named = plan.shape.conditions.at(condition).column;
  return dialect_.quoted(plan.table->columns[plan.table->column(named, number::unknownName)].name);
}

// By the hash of the kind's texts and the description, and then by the texts themselves.
void Plans::planSame(Plan& plan) const {
  const EventTable& events = *plan.table->events;
  const auto place = [&](std::u16string_view column) {
    return conditionOn(plan.shape, column).value_or(plan.shape.conditions.size());
  };
  const auto parameter = [&] { return dialect_.parameter(ColumnType::text); };
  const std::array<std::size_t, 4> texts = {place(events.kind[0]), place(events.kind[1]),
                                            place(events.kind[2]), place(events.description)};
  plan.special = Plan::Special::sameEvent;
  plan.values = {place(events.owner), place(events.moment)};
  plan.values.insert(plan.values.end(), texts.begin(), texts.end());
  plan.values.insert(plan.values.end(), texts.begin(), texts.end());
  plan.rows = "select " + columnsOf(plan, "f.") + joinedEvents(plan) +
              " where i.\"Owner\" = " + dialect_.number() +
              " and i.\"Moment\" = " + dialect_.folded(parameter()) +
              " and i.\"Hash\" = " + dialect_.hash({parameter(), parameter(), parameter(), parameter()});
  for (const std::size_t text : texts)
    plan.rows +=
        " and " + dialect_.folded("f." + columnOf(plan, text)) + " = " + dialect_.folded(parameter());
  plan.rows += " order by i.\"Key\"";
  plan.keys = dialect_.joined("select 0 where false");
  planManySame(plan, texts);
}

void Plans::planManySame(Plan& plan, const std::array<std::size_t, 4>& texts) const {
  plan.places = {plan.values[0], plan.values[1]};
  plan.places.insert(plan.places.end(), texts.begin(), texts.end());
  constexpr std::string_view names[] = {"r.a", "r.b", "r.c", "r.d"};
  // Each is looked for along the index, whatever the server believes of the tables' sizes, and what it is
  // looked for by is computed once.
  constexpr int mostAlike = 1000;
  std::string one = "select i.\"Key\" as key" + joinedEvents(plan) +
                    " where i.\"Owner\" = r.o and i.\"Moment\" = r.m and i.\"Hash\" = r.h";
  // Mostly they are the same to the letter, which is quickly seen.
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string column = "f." + columnOf(plan, texts[i]), name(names[i]);
    one.append(" and (").append(column).append(" = ").append(name).append(" or ");
    one.append(dialect_.folded(column)).append(" = ").append(dialect_.folded(name)).append(")");
  }
  plan.many = "with asked as materialized (select place, o, " + dialect_.folded("r.m") + " as m, " +
              dialect_.hash({"r.a", "r.b", "r.c", "r.d"}) + " as h, a, b, c, d from " +
              dialect_.rowsOfArrays({ColumnType::integer, ColumnType::text, ColumnType::text,
                                     ColumnType::text, ColumnType::text, ColumnType::text}) +
              " as r(o, m, a, b, c, d, place)) select r.place::text, found.key::text from asked r cross join "
              "lateral (" +
              dialect_.limited(one + " order by i.\"Key\"", mostAlike) +
              ") as found order by r.place, found.key";
}

}  // namespace vordane::odbc

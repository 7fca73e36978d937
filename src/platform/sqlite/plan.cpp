#include "platform/sqlite/plan.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/sqlite/errors.h"
#include "text/text.h"

namespace vordane::sqlite {
namespace {

struct NamedOrder {
  std::u16string_view column;
  FaultOrder order;
};
constexpr NamedOrder faultOrders[] = {{u"fault", FaultOrder::fault},
                                      {u"alarm", FaultOrder::alarm},
                                      {u"date", FaultOrder::date},
                                      {u"cpu", FaultOrder::cpu},
                                      {u"description", FaultOrder::description}};

std::string conditionsOf(const Plan& plan) {
  std::string sql;
  for (std::size_t i = 0; i < plan.shape.conditions.size(); ++i) {
    const jet::Condition& condition = plan.shape.conditions[i];
    const Column& column = plan.table->columns[plan.table->column(condition.column, number::unknownName)];
    sql += (i == 0 ? " WHERE " : " AND ") + column.quoted + " = ?" + std::to_string(i + 1);
    if (condition.isText) sql += " COLLATE vordane_text";
  }
  return sql;
}

// What follows a unique column never decides and is left out; without one the key decides, so that an order
// is always the same.
std::string ordersOf(const Plan& plan) {
  if (plan.shape.orders.empty()) return {};
  std::string sql = " ORDER BY ";
  for (const jet::Order& order : plan.shape.orders) {
    const std::size_t position = plan.table->column(order.column, number::unknownName);
    const Column& column = plan.table->columns[position];
    sql += column.quoted + " COLLATE vordane_text" + (order.descending ? " DESC, " : ", ");
    if (plan.table->autoNumber == position) return sql.erase(sql.size() - 2);
  }
  return sql + "rowid";
}

std::string selectOf(const Plan& plan) {
  std::string sql = "SELECT rowid";
  for (const Column* column : plan.columns) sql += ", " + column->quoted;
  return sql + " FROM " + plan.table->quoted;
}

void chooseColumns(Plan& plan) {
  if (plan.shape.columns.empty())
    for (const Column& column : plan.table->columns) plan.columns.push_back(&column);
  for (const std::u16string& name : plan.shape.columns)
    plan.columns.push_back(&plan.table->columns[plan.table->column(name, number::unknownName)]);
  for (const Column* column : plan.columns) plan.names.push_back(column->name);
}

void planUnion(Plan& plan) {
  const std::size_t key = plan.table->column(u"ID", number::unknownName);
  if (plan.table->columns.size() != 2) fail(number::columnCount);
  for (const Column& column : plan.table->columns) plan.names.push_back(column.name);
  const std::string& table = plan.table->quoted;
  plan.rows = StatementPool("SELECT * FROM " + table + " UNION SELECT -1, COUNT(*) FROM " + table +
                            " ORDER BY " + std::to_string(key + 1));
}

void planFaults(Plan& plan) {
  const jet::Shape& shape = plan.shape;
  if (!plan.table->isFaults || !shape.columns.empty() || shape.verb != jet::Verb::select) return;
  if (shape.conditions.size() == 6) {
    plan.special = Plan::Special::sameFault;
  } else if (shape.conditions.empty() && shape.orders.size() == 1 && shape.orders[0].column == u"date" &&
             shape.orders[0].descending) {
    plan.special = Plan::Special::newestFaults;
  } else if (shape.conditions.size() == 1 && !shape.orders.empty()) {
    const auto* found =
        std::find_if(std::begin(faultOrders), std::end(faultOrders),
                     [&](const NamedOrder& named) { return named.column == shape.orders[0].column; });
    if (found == std::end(faultOrders)) return;
    plan.special = Plan::Special::faultsOfExchange;
    plan.order = found->order;
    plan.descending = shape.orders[0].descending;
  }
}

}  // namespace

std::size_t Plan::resultColumn(std::u16string_view name) const {
  for (std::size_t i = 0; i < names.size(); ++i)
    if (names[i] == name) return i;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (text::equalIgnoringCase(names[i], name)) return i;
  fail(number::unknownItem, name);
}

void Plans::forgetIfTablesChanged() {
  connection_.followTables();
  if (tablesChanged_ == connection_.tablesChanged()) return;
  former_.push_back(std::exchange(plans_, {}));
  known_.clear();
  tablesChanged_ = connection_.tablesChanged();
}

Plan& Plans::find(std::u16string_view statement, jet::Lifted& lifted) {
  forgetIfTablesChanged();
  for (const Known& known : known_)
    if (known.skeleton.match(statement, lifted.literals)) return *known.plan;
  jet::lift(statement, lifted);
  auto found = plans_.find(lifted.shape);
  if (found == plans_.end()) found = plans_.emplace(lifted.shape, make(lifted)).first;
  Plan& plan = *found->second;
  if (plan.isUnion() && lifted.literals[0].number != -1) fail(number::syntax);
  if (!plan.isUnion()) remember(statement, lifted, plan);
  return plan;
}

// The statements of an ingestion find room; the language tables' are asked once each.
void Plans::remember(std::u16string_view statement, const jet::Lifted& lifted, Plan& plan) {
  constexpr std::size_t room = 6;
  for (std::u16string_view name : {u"PBXList", u"FaultDisplay"})
    if (text::equalIgnoringCase(plan.table->name, name) && known_.size() < room)
      known_.push_back({jet::Skeleton(statement, lifted), &plan});
}

std::unique_ptr<Plan> Plans::make(const jet::Lifted& lifted) {
  auto plan = std::make_unique<Plan>();
  plan->tablesChanged = tablesChanged_;
  plan->shape = documented_.shapeOf(lifted);
  plan->table = &connection_.table(plan->shape.table);
  // Rows are known by their number, which such a column hides.
  if (plan->table->find(u"rowid")) fail(number::invalidOperation);
  if (plan->isUnion()) {
    planUnion(*plan);
    return plan;
  }
  if (plan->shape.verb == jet::Verb::remove) {
    plan->rows = StatementPool("DELETE FROM " + plan->table->quoted + conditionsOf(*plan));
    return plan;
  }
  chooseColumns(*plan);
  const std::string select = selectOf(*plan), rest = conditionsOf(*plan) + ordersOf(*plan);
  plan->rows = StatementPool(select + rest);
  plan->keys = StatementPool("SELECT rowid FROM " + plan->table->quoted + rest);
  plan->byKey = StatementPool(select + " WHERE rowid = ?");
  planFaults(*plan);
  return plan;
}

}  // namespace vordane::sqlite

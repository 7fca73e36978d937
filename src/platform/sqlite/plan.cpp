#include "platform/sqlite/plan.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/sqlite/errors.h"
#include "platform/sqlite/text_rules.h"
#include "text/text.h"

namespace vordane::sqlite {
namespace {

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
  const std::size_t key = plan.table->column(plan.shape.orders.front().column, number::unknownName);
  if (plan.table->columns.size() != 2) fail(number::columnCount);
  for (const Column& column : plan.table->columns) plan.names.push_back(column.name);
  const std::string& table = plan.table->quoted;
  plan.rows = StatementPool("SELECT * FROM " + table + " UNION SELECT -1, COUNT(*) FROM " + table +
                            " ORDER BY " + std::to_string(key + 1));
}

// The condition or order on a column; nothing when it has none.
template <class Terms>
std::optional<std::size_t> termOn(const Terms& terms, const Column& column) {
  for (std::size_t i = 0; i < terms.size(); ++i)
    if (terms[i].column == column.folded) return i;
  return std::nullopt;
}

// One owner's rows: the one condition compares its number.
bool asksForOwner(const Plan& plan) {
  const auto& conditions = plan.shape.conditions;
  return conditions.size() == 1 && !conditions[0].isText &&
         conditions[0].column == plan.table->columns[plan.table->events->owner].folded;
}

// The duplicate test compares the owner and every text.
bool planSame(Plan& plan) {
  const EventColumns& events = *plan.table->events;
  const auto& conditions = plan.shape.conditions;
  const auto& columns = plan.table->columns;
  const auto owner = termOn(conditions, columns[events.owner]);
  if (conditions.size() != events.texts.size() + 1 || !owner || conditions[*owner].isText) return false;
  plan.ownerValue = *owner;
  for (std::size_t i = 0; i < events.texts.size(); ++i) {
    const auto text = termOn(conditions, columns[events.texts[i]]);
    if (!text || !conditions[*text].isText) return false;
    plan.textValues[i] = *text;
  }
  return true;
}

bool asksForNewest(const Plan& plan) {
  const auto& orders = plan.shape.orders;
  return plan.shape.conditions.empty() && orders.size() == 1 && orders[0].descending &&
         termOn(orders, plan.table->columns[plan.table->events->texts[EventColumns::moment]]);
}

// An order by description or not, then some of the kind's texts, then moment, then key, in one direction, can
// be read forwards or backwards; what follows the key never decides.
bool planOrder(Plan& plan) {
  const EventColumns& events = *plan.table->events;
  const auto& columns = plan.table->columns;
  const auto& orders = plan.shape.orders;
  std::size_t at = 0;
  const auto takes = [&](std::size_t column) {
    const bool taken = at < orders.size() && orders[at].column == columns[column].folded &&
                       orders[at].descending == orders[0].descending;
    if (taken) ++at;
    return taken;
  };
  plan.order.byDescription = takes(events.texts[EventColumns::description]);
  for (std::size_t kind = 0; kind < EventColumns::moment;) {
    const bool taken = takes(events.texts[kind]);
    if (taken) plan.order.kinds.push_back(kind);
    kind = taken ? 0 : kind + 1;
  }
  plan.descending = !orders.empty() && orders[0].descending;
  return takes(events.texts[EventColumns::moment]) && takes(*plan.table->autoNumber);
}

Plan::Special specialOf(Plan& plan) {
  using Special = Plan::Special;
  if (!plan.table->events || !plan.shape.columns.empty()) return Special::none;
  if (plan.shape.verb == jet::Verb::remove)
    return asksForOwner(plan) ? Special::eventsOfOwner : Special::none;
  if (plan.shape.orders.empty()) return planSame(plan) ? Special::sameEvent : Special::none;
  if (asksForNewest(plan)) return Special::newestEvents;
  return asksForOwner(plan) && planOrder(plan) ? Special::eventsOfOwner : Special::none;
}

// Keeps the memory of the texts.
void takeValues(const database::Statement& statement, std::vector<jet::Literal>& literals) {
  const auto values = statement.values();
  literals.resize(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    literals[i].isText = !values[i].isNumber();
    if (literals[i].isText)
      literals[i].text.assign(values[i].text());
    else
      literals[i].number = values[i].number();
  }
}

// A pattern may hold literals of its own besides; its text is then taken apart each time.
bool areLiterals(const database::Statement& statement, const std::vector<jet::Literal>& literals) {
  const auto values = statement.values();
  return std::equal(values.begin(), values.end(), literals.begin(), literals.end(),
                    [](const database::StatementValue& value, const jet::Literal& literal) {
                      return value.isNumber() ? !literal.isText && literal.number == value.number()
                                              : literal.isText && literal.text == value.text();
                    });
}

}  // namespace

std::size_t Plan::resultColumn(std::u16string_view name) const {
  for (std::size_t i = 0; i < names.size(); ++i)
    if (names[i] == name) return i;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (text::equalIgnoringCase(names[i], name)) return i;
  fail(number::unknownItem, name);
}

EventTexts Plan::sameTexts(const std::vector<jet::Literal>& literals) const {
  EventTexts texts;
  for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = literals[textValues[i]].text;
  return texts;
}

void Plans::forgetIfTablesChanged() {
  connection_.tables().follow();
  if (tablesChanged_ == connection_.tables().timesChanged()) return;
  former_.push_back(std::exchange(plans_, {}));
  known_.clear();
  direct_.clear();
  tablesChanged_ = connection_.tables().timesChanged();
}

Plan* Plans::findDirect(const database::StatementPattern& pattern) const {
  for (const Direct& direct : direct_)
    if (isSame(direct.text, pattern.text()) && isSame(direct.ending, pattern.ending())) return direct.plan;
  return nullptr;
}

Plan& Plans::find(const database::Statement& statement, jet::Lifted& lifted) {
  forgetIfTablesChanged();
  if (!statement.isPlain()) return findText(statement.text(), lifted);
  if (Plan* const plan = findDirect(statement.pattern())) {
    takeValues(statement, lifted.literals);
    return *plan;
  }
  Plan& plan = findText(statement.text(), lifted);
  if (areLiterals(statement, lifted.literals))
    direct_.push_back(
        {std::u16string(statement.pattern().text()), std::u16string(statement.pattern().ending()), &plan});
  return plan;
}

Plan& Plans::findText(std::u16string_view statement, jet::Lifted& lifted) {
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

// The statements that are asked over and over find room; the oldest leaves for a new one.
void Plans::remember(std::u16string_view statement, const jet::Lifted& lifted, Plan& plan) {
  constexpr std::size_t room = 12;
  if (known_.size() == room) known_.erase(known_.begin());
  known_.push_back({jet::Skeleton(statement, lifted), &plan});
}

std::unique_ptr<Plan> Plans::make(const jet::Lifted& lifted) {
  auto plan = std::make_unique<Plan>();
  plan->tablesChanged = tablesChanged_;
  plan->shape = documented_.shapeOf(lifted);
  plan->table = &connection_.tables().table(plan->shape.table);
  // Rows are known by their number, which such a column hides.
  if (plan->table->find(u"rowid")) fail(number::invalidOperation);
  if (plan->isUnion()) {
    planUnion(*plan);
    return plan;
  }
  if (plan->shape.verb == jet::Verb::remove) {
    plan->rows = StatementPool("DELETE FROM " + plan->table->quoted + conditionsOf(*plan));
    plan->special = specialOf(*plan);
    return plan;
  }
  chooseColumns(*plan);
  const std::string select = selectOf(*plan), rest = conditionsOf(*plan) + ordersOf(*plan);
  plan->rows = StatementPool(select + rest);
  plan->keys = StatementPool("SELECT rowid FROM " + plan->table->quoted + rest);
  plan->byKey = StatementPool(select + " WHERE rowid = ?");
  plan->special = specialOf(*plan);
  return plan;
}

}  // namespace vordane::sqlite

#include "platform/dao/dao_objects.h"

#include <algorithm>
#include <utility>

#include "platform/database_numbers.h"
#include "platform/run_time_errors.h"
#include "text/dates.h"

namespace vordane::dao {
namespace {

using automation::AutomationError;
namespace number = database::number;

// DAO's own number, or that of a call which automation itself has turned down before DAO had a say; any other
// failure is that of a call on an object that is no longer there.
int numberOf(std::int32_t code) {
  const auto own = automation::runTimeNumber(code);
  return own ? *own : automation::refusedCallNumber(code).value_or(number::closed);
}

std::u16string inHexadecimal(std::int32_t code) {
  std::u16string digits;
  for (int shift = 28; shift >= 0; shift -= 4)
    digits.push_back(u"0123456789ABCDEF"[static_cast<std::uint32_t>(code) >> shift & 15U]);
  return digits;
}

// DAO's errors are run-time errors with the engine's number in their lower half. One without words of its own
// still says something in the box that shows it.
[[noreturn]] void raise(const AutomationError& failure) {
  std::u16string description = failure.description();
  if (description.empty()) description = u"Automation error " + inHexadecimal(failure.code());
  throw database::DatabaseError(numberOf(failure.code()), description);
}

Value invoke(const ObjectRef& object, std::u16string_view member, automation::CallKind kind,
             std::initializer_list<Argument> arguments) {
  if (!object) throw database::DatabaseError(number::closed, {});
  std::vector<Argument> copy(arguments);
  try {
    return object->invoke(member, kind, copy);
  } catch (const AutomationError& failure) {
    raise(failure);
  }
}

}  // namespace

Value call(const ObjectRef& object, std::u16string_view member, std::initializer_list<Argument> arguments) {
  return invoke(object, member, automation::CallKind::method, arguments);
}

Value get(const ObjectRef& object, std::u16string_view member, std::initializer_list<Argument> arguments) {
  return invoke(object, member, automation::CallKind::methodOrGet, arguments);
}

ObjectRef getObject(const ObjectRef& object, std::u16string_view member,
                    std::initializer_list<Argument> arguments) {
  Value value = get(object, member, arguments);
  if (auto* reference = std::get_if<ObjectRef>(&value); reference != nullptr && *reference) return *reference;
  throw database::DatabaseError(number::closed, {});
}

void put(const ObjectRef& object, std::u16string_view member, const Value& value) {
  invoke(object, member, automation::CallKind::put, {automation::byVal(value)});
}

ObjectRef createEngine(platform::ObjectCreator& creator) {
  for (const auto progId : {u"DAO.DBEngine.120", u"DAO.DBEngine.36"}) {
    try {
      if (auto engine = creator.create(progId)) return engine;
    } catch (const AutomationError&) {
      // Not installed; the older one may be.
    }
  }
  constexpr int cannotCreateObject = 429;
  throw database::DatabaseError(cannotCreateObject, u"DAO.DBEngine");
}

ObjectRef openDatabase(const ObjectRef& engine, std::u16string_view path, bool readOnly) {
  const ObjectRef workspace =
      getObject(getObject(engine, u"Workspaces"), u"Item", {automation::byVal(std::int16_t{0})});
  return getObject(workspace, u"OpenDatabase",
                   {automation::byVal(std::u16string(path)), automation::byVal(automation::Missing{}),
                    automation::byVal(readOnly), automation::byVal(automation::Missing{})});
}

DaoRecordset::DaoRecordset(ObjectRef object)
    : object_(std::move(object)), fields_(getObject(object_, u"Fields")) {}

DaoRecordset::~DaoRecordset() {
  try {
    close();
  } catch (...) {
    // The engine has closed it already.
  }
}

DaoRecordset::KnownField& DaoRecordset::field(const Value& nameOrPosition) {
  if (!object_) throw database::DatabaseError(number::closed, {});
  const auto found = std::find_if(known_.begin(), known_.end(),
                                  [&](const KnownField& known) { return known.key == nameOrPosition; });
  if (found != known_.end()) return *found;
  return known_.emplace_back(
      KnownField{nameOrPosition, getObject(fields_, u"Item", {automation::byVal(nameOrPosition)}), {}});
}

Value DaoRecordset::read(const Value& nameOrPosition) {
  Value value = get(field(nameOrPosition).object, u"Value");
  if (std::holds_alternative<automation::Date>(value)) return automation::toText(value);
  return value;
}

bool DaoRecordset::isDate(const Value& nameOrPosition) {
  KnownField& known = field(nameOrPosition);
  if (!known.isDate) known.isDate = automation::toInteger(get(known.object, u"Type")) == dateFieldType;
  return *known.isDate;
}

// How DAO reads a date from a text depends on the workstation; a date value means the same everywhere.
void DaoRecordset::write(const Value& nameOrPosition, const Value& value) {
  const auto* words = std::get_if<std::u16string>(&value);
  const auto moment = words != nullptr ? text::momentOf(*words) : std::nullopt;
  const bool asDate = moment && isDate(nameOrPosition);
  put(field(nameOrPosition).object, u"Value", asDate ? Value(automation::Date{*moment}) : value);
}

void DaoRecordset::close() {
  if (!object_) return;
  const ObjectRef closing = std::exchange(object_, nullptr);
  known_.clear();
  fields_.reset();
  call(closing, u"Close");
}

}  // namespace vordane::dao

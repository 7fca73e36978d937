#include "platform/dao/dao_objects.h"

#include <algorithm>
#include <utility>

#include "text/text.h"

namespace vordane::dao {
namespace {

using automation::AutomationError;

constexpr std::uint32_t runTimeFacility = 0x800A0000U;
constexpr int objectGone = 3420;  // the number of a call on an object that is no longer there

// DAO's errors are run-time errors with the engine's number in their lower half.
[[noreturn]] void raise(const AutomationError& failure) {
  const auto code = static_cast<std::uint32_t>(failure.code());
  const int number = (code & 0xFFFF0000U) == runTimeFacility ? static_cast<int>(code & 0xFFFFU) : objectGone;
  throw database::DatabaseError(number, failure.description());
}

Value invoke(const ObjectRef& object, std::u16string_view member, automation::CallKind kind,
             std::initializer_list<Argument> arguments) {
  if (!object) throw database::DatabaseError(objectGone, {});
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
  throw database::DatabaseError(objectGone, {});
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

ObjectRef DaoRecordset::field(const Value& nameOrPosition) {
  if (!object_) throw database::DatabaseError(objectGone, {});
  const auto found = std::find_if(known_.begin(), known_.end(),
                                  [&](const KnownField& known) { return known.key == nameOrPosition; });
  if (found != known_.end()) return found->object;
  return known_.emplace_back(nameOrPosition, getObject(fields_, u"Item", {automation::byVal(nameOrPosition)}))
      .object;
}

Value DaoRecordset::read(const Value& nameOrPosition) {
  Value value = get(field(nameOrPosition), u"Value");
  if (std::holds_alternative<automation::Date>(value)) return automation::toText(value);
  return value;
}

void DaoRecordset::close() {
  if (!object_) return;
  const ObjectRef closing = std::exchange(object_, nullptr);
  known_.clear();
  fields_.reset();
  call(closing, u"Close");
}

}  // namespace vordane::dao

#include "dao/dao_object.h"

#include "platform/database.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::fakes {

using automation::AutomationError;
using automation::CallKind;
namespace error = automation::error;

void raiseDao(int number, std::u16string description) {
  throw AutomationError(error::runTime(number), std::move(description), u"DAO.DbEngine");
}

void DaoObject::note(const std::string& what) const {
  world_->misuse.push_back(name_ + "." + what);
  world_->misused(world_->misuse.back());
}

void DaoObject::misuse(std::u16string_view what, std::int32_t code, int position) const {
  note(text::toUtf8(what));
  throw AutomationError(code, {}, {}, position);
}

bool DaoObject::hasMember(std::u16string_view member) const {
  const bool known = members_.contains(text::toLower(member));
  if (!known) note(text::toUtf8(member) + " is no member");
  return known;
}

const DaoObject::Member& DaoObject::find(std::u16string_view member, CallKind kind) const {
  const auto found = members_.find(text::toLower(member));
  const std::u16string name(member);
  if (found == members_.end()) misuse(name + u" is no member", error::unknownName);
  const Member& known = found->second;
  if (automation::isPut(kind) ? !known.put : kind == (known.isMethod ? CallKind::get : CallKind::method))
    misuse(name + u" is called in another way", error::memberNotFound);
  return known;
}

Value DaoObject::invoke(std::u16string_view member, CallKind kind, Arguments arguments) {
  const Member& known = find(member, kind);
  const bool put = automation::isPut(kind);
  const std::size_t least = put ? 1 : known.least, most = put ? 1 : known.most;
  if (arguments.size() < least || arguments.size() > most)
    misuse(std::u16string(member) + u" takes another number of arguments", error::badParameterCount);
  requireOpen();
  const Action action = put ? known.put : known.get;
  try {
    return action(arguments);
  } catch (const database::DatabaseError& failure) {
    raiseDao(failure.number(), failure.description());
  }
}

void DaoObject::method(std::u16string name, std::size_t least, std::size_t most, Action action) {
  members_[text::toLower(name)] = {true, least, most, std::move(action), {}};
}

void DaoObject::property(std::u16string name, Action get, Action put) {
  members_[text::toLower(name)] = {false, 0, 0, std::move(get), std::move(put)};
}

void DaoObject::collection(std::function<std::size_t()> count,
                           std::function<automation::ObjectRef(const Value&)> item) {
  property(u"Count", [count](Arguments) { return Value(static_cast<std::int16_t>(count())); });
  members_[u"item"] = {false,
                       1,
                       1,
                       [this, item](Arguments arguments) {
                         const Value& key = arguments[0].value;
                         if (!std::holds_alternative<std::u16string>(key)) number(arguments, 0, 0);
                         return Value(item(key));
                       },
                       {}};
}

std::u16string DaoObject::text(Arguments arguments, std::size_t position) const {
  if (const auto* words = std::get_if<std::u16string>(&arguments[position].value)) return *words;
  misuse(u"a text is needed", error::typeMismatch, static_cast<int>(position));
}

std::int32_t DaoObject::number(Arguments arguments, std::size_t position, std::int32_t fallback) const {
  if (position >= arguments.size() || automation::isMissing(arguments[position].value)) return fallback;
  const Value& value = arguments[position].value;
  if (const auto* small = std::get_if<std::int16_t>(&value)) return *small;
  if (const auto* large = std::get_if<std::int32_t>(&value)) return *large;
  misuse(u"a number is needed", error::typeMismatch, static_cast<int>(position));
}

bool DaoObject::flag(Arguments arguments, std::size_t position, bool fallback) const {
  if (position >= arguments.size() || automation::isMissing(arguments[position].value)) return fallback;
  if (const auto* on = std::get_if<bool>(&arguments[position].value)) return *on;
  misuse(u"a Boolean is needed", error::typeMismatch, static_cast<int>(position));
}

void DaoObject::leftOut(Arguments arguments, std::size_t position) const {
  if (position < arguments.size() && !automation::isMissing(arguments[position].value))
    misuse(u"an argument was to be left out", error::typeMismatch, static_cast<int>(position));
}

}  // namespace vordane::fakes

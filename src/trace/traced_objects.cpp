#include "trace/traced_objects.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "text/text.h"

namespace vordane::trace {
namespace {

using automation::Argument;
using automation::AutomationError;
using automation::CallKind;
using automation::ObjectRef;
using automation::Value;

std::string_view nameOf(CallKind kind) {
  switch (kind) {
    case CallKind::method:
      return "method";
    case CallKind::get:
      return "get";
    case CallKind::methodOrGet:
      return "method or get";
    case CallKind::put:
      return "put";
    case CallKind::putRef:
      return "put reference";
    case CallKind::putOrPutRef:
      return "put or put reference";
  }
  return "another way";
}

// The texts of a list's entries, of which there are many: the position in ListLines, -1 for every other call.
int columnOf(std::u16string_view member, CallKind kind, std::span<const Argument> arguments) {
  if (arguments.size() != 1 || kind != CallKind::methodOrGet || arguments[0].byReference ||
      !std::holds_alternative<std::int16_t>(arguments[0].value))
    return -1;
  switch (member.size()) {
    case 3:
      return member == u"CMD" ? 0 : -1;
    case 9:
      return member == u"FirstData" ? 1 : member == u"ExtraData" ? 3 : -1;
    case 10:
      return member == u"SecondData" ? 2 : -1;
    default:
      return -1;
  }
}

// A call that crosses the border, from its beginning to its end: a line for each.
class Crossing {
 public:
  struct Names {
    std::string_view begins, ends;
  };

  Crossing(Recorder& recorder, Names names, std::int64_t object)
      : recorder_(recorder), names_(names), object_(object) {}

  void begins(std::u16string_view member, CallKind kind, std::span<const Argument> arguments) {
    number_ = recorder_.next();
    began_ = recorder_.now();
    recorder_.tell(names_.begins, [&](Line& line) {
      line.number("number", number_)
          .number("object", object_)
          .text("member", member)
          .word("as", nameOf(kind));
      line.arguments(arguments);
    });
  }
  void answered(const Value& answer, std::span<const Argument> before, std::span<const Argument> after) {
    ends([&](Line& line) {
      if (!automation::isEmpty(answer)) line.value("answer", answer);
      line.changes(before, after);
    });
  }
  void failed(const AutomationError& failure) {
    ends([&](Line& line) {
      line.word("error", hexadecimal(failure.code()));
      if (!failure.description().empty()) line.text("description", failure.description());
      if (!failure.source().empty()) line.text("source", failure.source());
    });
  }
  void brokenOff() {
    ends([](Line& line) { line.word("error", "broken off"); });
  }

 private:
  template <class Fill>
  void ends(Fill fill) {
    recorder_.tell(names_.ends, [&](Line& line) {
      line.number("number", number_).number("took", recorder_.now() - began_);
      fill(line);
    });
  }

  Recorder& recorder_;
  Names names_;
  std::int64_t object_, number_ = 0;
  Moment began_ = 0;
};

constexpr Crossing::Names outgoing{"call", "answer"}, incoming{"called", "returned"};

// Runs a call, and tells how it ended; whatever it throws goes on.
template <class Call>
Value cross(Crossing& crossing, std::span<const Argument> before, std::span<const Argument> after,
            const Call& call) {
  try {
    Value answer = call();
    crossing.answered(answer, before, after);
    return answer;
  } catch (const AutomationError& failure) {
    crossing.failed(failure);
    throw;
  } catch (...) {
    crossing.brokenOff();
    throw;
  }
}

}  // namespace

// Another program's object, as the add-in calls it.
class ObjectOfOthers final : public automation::Object, public std::enable_shared_from_this<ObjectOfOthers> {
 public:
  ObjectOfOthers(std::shared_ptr<TracedObjects> objects, ObjectRef object)
      : objects_(std::move(objects)),
        recorder_(objects_->recorder()),
        object_(std::move(object)),
        number_(recorder_.next()) {
    recorder_.name(*object_, number_);
    recorder_.name(*this, number_);
  }
  ~ObjectOfOthers() override {
    recorder_.tell("let go", [this](Line& line) { line.number("object", number_); });
    recorder_.forget(*object_);
    recorder_.forget(*this);
    objects_->others_.erase(object_.get());
  }

  const ObjectRef& object() const { return object_; }
  bool hasMember(std::u16string_view member) const override { return object_->hasMember(member); }

  Value invoke(std::u16string_view member, CallKind kind, std::span<Argument> arguments) override {
    const int column = columnOf(member, kind, arguments);
    if (column < 0) return call(member, kind, arguments);
    try {
      return readEntry(column, member, arguments);
    } catch (const AutomationError& failure) {
      Crossing crossing(recorder_, outgoing, number_);
      crossing.begins(member, kind, arguments);
      crossing.failed(failure);
      throw;
    }
  }

 private:
  Value call(std::u16string_view member, CallKind kind, std::span<Argument> arguments) {
    const auto alive = shared_from_this();  // the call may bring about that everybody lets go of it
    keepSecrets(member, kind, arguments);
    std::vector<Argument> passed;
    for (const Argument& argument : arguments)
      passed.push_back({objects_->outwards(argument.value), argument.byReference});
    const std::vector<Argument> before = passed;
    Crossing crossing(recorder_, outgoing, number_);
    crossing.begins(member, kind, passed);
    return cross(crossing, before, passed, [&] {
      Value answer = objects_->inwards(object_->invoke(member, kind, passed));
      for (std::size_t i = 0; i < passed.size(); ++i)
        if (passed[i].byReference) arguments[i].value = objects_->inwards(passed[i].value);
      if (text::equalIgnoringCase(member, u"Login") || text::equalIgnoringCase(member, u"LoginID"))
        keep(answer);
      return answer;
    });
  }

  // Whoever reads a list holds its record as long as that takes.
  Value readEntry(int column, std::u16string_view member, std::span<Argument> arguments) {
    Value answer = object_->invoke(member, CallKind::methodOrGet, arguments);
    const auto* const text = std::get_if<std::u16string>(&answer);
    if (text != nullptr && text->size() <= Recorder::longestText)
      recorder_.entry(number_, column, std::get<std::int16_t>(arguments[0].value), *text);
    else
      tellOddEntry(member, arguments, answer);
    return answer;
  }

  // An entry that is no text, or a very long one.
  void tellOddEntry(std::u16string_view member, std::span<const Argument> arguments, Value& answer) {
    answer = objects_->inwards(answer);
    Crossing crossing(recorder_, outgoing, number_);
    crossing.begins(member, CallKind::methodOrGet, arguments);
    crossing.answered(answer, {}, {});
  }

  void keepSecrets(std::u16string_view member, CallKind kind, std::span<const Argument> arguments) {
    const bool second =
        text::equalIgnoringCase(member, u"LogOut") || text::equalIgnoringCase(member, u"CancelRequest");
    if (second && arguments.size() > 1) keep(arguments[1].value);
    if (automation::isPut(kind) && text::equalIgnoringCase(member, u"LoginID") && !arguments.empty())
      keep(arguments.back().value);
  }
  void keep(const Value& identifier) {
    if (const auto* const text = std::get_if<std::u16string>(&identifier)) recorder_.secrets().keep(*text);
  }

  std::shared_ptr<TracedObjects> objects_;
  Recorder& recorder_;
  ObjectRef object_;
  std::int64_t number_;
};

// One of the add-in's objects, as others call it.
class OwnObject final : public automation::TableObject {
 public:
  OwnObject(std::shared_ptr<TracedObjects> objects, std::shared_ptr<automation::TableObject> object)
      : objects_(std::move(objects)),
        recorder_(objects_->recorder()),
        object_(std::move(object)),
        number_(recorder_.next()) {
    recorder_.name(*object_, number_);
    recorder_.name(*this, number_);
    recorder_.tell(
        "lent", [this](Line& line) { line.number("object", number_).text("class", object_->table().name); });
  }
  ~OwnObject() override {
    recorder_.tell("released", [this](Line& line) { line.number("object", number_); });
    recorder_.forget(*object_);
    recorder_.forget(*this);
    objects_->own_.erase(object_.get());
    object_.reset();  // which may do the work of a last release: all that it calls is told behind this
  }

  const std::shared_ptr<automation::TableObject>& object() const { return object_; }
  const automation::ClassTable& table() const override { return object_->table(); }

 protected:
  Value invokeMember(std::size_t member, CallKind kind, std::span<Argument> arguments) override {
    const auto alive = object_;
    const auto objects = objects_;
    const std::u16string_view name = table().members[member].name;
    if (automation::isPut(kind) && name == u"LoginID")
      if (const auto* const text = std::get_if<std::u16string>(&arguments[0].value))
        recorder_.secrets().keep(*text);
    Crossing crossing(recorder_, incoming, number_);
    std::vector<Argument> passed;
    for (const Argument& argument : arguments)
      passed.push_back({objects->inwards(argument.value), argument.byReference});
    crossing.begins(name, kind, passed);
    return cross(crossing, {}, {}, [&] { return objects->outwards(alive->invoke(member, kind, passed)); });
  }

 private:
  std::shared_ptr<TracedObjects> objects_;
  Recorder& recorder_;
  std::shared_ptr<automation::TableObject> object_;
  std::int64_t number_;
};

ObjectRef TracedObjects::inwards(const ObjectRef& object) {
  if (!object) return object;
  if (const auto own = std::dynamic_pointer_cast<OwnObject>(object)) return own->object();
  std::weak_ptr<ObjectOfOthers>& known = others_[object.get()];
  if (auto there = known.lock()) return there;
  auto made = std::make_shared<ObjectOfOthers>(shared_from_this(), object);
  known = made;
  return made;
}

ObjectRef TracedObjects::outwards(const ObjectRef& object) {
  if (!object) return object;
  if (const auto other = std::dynamic_pointer_cast<ObjectOfOthers>(object)) return other->object();
  auto table = std::dynamic_pointer_cast<automation::TableObject>(object);
  if (!table) return object;
  std::weak_ptr<OwnObject>& known = own_[object.get()];
  if (auto there = known.lock()) return there;
  auto made = std::make_shared<OwnObject>(shared_from_this(), std::move(table));
  known = made;
  return made;
}

Value TracedObjects::inwards(const Value& value) {
  const auto* const object = std::get_if<ObjectRef>(&value);
  return object == nullptr ? value : Value(inwards(*object));
}

Value TracedObjects::outwards(const Value& value) {
  const auto* const object = std::get_if<ObjectRef>(&value);
  return object == nullptr ? value : Value(outwards(*object));
}

automation::Object& TracedObjects::heldOf(automation::Object& object) {
  const auto found = own_.find(&object);
  const auto held = found == own_.end() ? nullptr : found->second.lock();
  return held ? static_cast<automation::Object&>(*held) : object;
}

}  // namespace vordane::trace

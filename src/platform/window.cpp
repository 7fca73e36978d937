#include "platform/window.h"

#include <algorithm>

#include "text/text.h"
#include "text/utf8.h"

namespace vordane::window {
namespace {

bool isListType(std::u16string_view typeName) {
  return typeName == u"ComboBox" || typeName == u"ListBox";
}

// The short names of the font's parts.
std::u16string_view fullName(std::u16string_view property) {
  if (text::equalIgnoringCase(property, u"FontName")) return u"Font.Name";
  if (text::equalIgnoringCase(property, u"FontSize")) return u"Font.Size";
  return property;
}

}  // namespace

PropertyError::PropertyError(std::u16string_view what) : what_(text::toUtf8(what)) {}

Control::Control(std::u16string name, int index, std::u16string typeName,
                 std::map<std::u16string, Value> properties)
    : name_(std::move(name)),
      index_(index),
      typeName_(std::move(typeName)),
      properties_(std::move(properties)) {}

std::map<std::u16string, Value>::const_iterator Control::find(std::u16string_view name) const {
  const auto named = [&](std::u16string_view property) {
    return std::find_if(properties_.begin(), properties_.end(),
                        [&](const auto& entry) { return text::equalIgnoringCase(entry.first, property); });
  };
  // A type may have the short name as a property of its own.
  const auto found = named(name);
  return found != properties_.end() ? found : named(fullName(name));
}

bool Control::has(std::u16string_view property) const {
  return find(property) != properties_.end();
}

Value Control::get(std::u16string_view property) const {
  const auto found = find(property);
  if (found == properties_.end())
    throw PropertyError(name_ + u" has no property " + std::u16string(property));
  return found->second;
}

void Control::set(std::u16string_view property, Value value) {
  const auto found = find(property);
  if (found == properties_.end())
    throw PropertyError(name_ + u" has no property " + std::u16string(property));
  properties_[found->first] = std::move(value);
  changed(found->first);
}

bool Control::isList() const {
  return isListType(typeName_);
}

int Control::addItem(std::u16string text) {
  if (!isList()) throw PropertyError(name_ + u" has no list");
  items_.push_back({std::move(text), 0});
  changed(u"Items");
  return static_cast<int>(items_.size()) - 1;
}

void Control::clearItems() {
  if (!isList()) throw PropertyError(name_ + u" has no list");
  items_.clear();
  listIndex_ = -1;
  changed(u"Items");
}

void Control::setItemData(int position, std::int32_t data) {
  if (position < 0 || position >= static_cast<int>(items_.size()))
    throw PropertyError(name_ + u": no such entry");
  items_[static_cast<std::size_t>(position)].itemData = data;
}

const std::vector<Control::Entry>& Control::items() const {
  return items_;
}

void Control::setListIndex(int position) {
  if (!isList() || position < -1 || position >= static_cast<int>(items_.size()))
    throw PropertyError(name_ + u": no such entry");
  listIndex_ = position;
  changed(u"ListIndex");
}

void Control::changed(std::u16string_view property) {
  if (listener_) listener_(*this, property);
}

Form::Form(std::u16string name, std::map<std::u16string, Value> properties)
    : self_(std::move(name), -1, u"Form", std::move(properties)) {}

Control& Form::add(std::u16string name, int index, std::u16string typeName,
                   std::map<std::u16string, Value> properties) {
  return *controls_.emplace_back(
      std::make_unique<Control>(std::move(name), index, std::move(typeName), std::move(properties)));
}

Control* Form::find(std::u16string_view name, int index) {
  for (const auto& control : controls_)
    if (control->index() == index && text::equalIgnoringCase(control->name(), name)) return control.get();
  return nullptr;
}

Control& Form::control(std::u16string_view name, int index) {
  Control* found = find(name, index);
  if (found == nullptr) throw PropertyError(u"no control " + std::u16string(name));
  return *found;
}

void Form::listen(const Control::Listener& listener) {
  self_.listen(listener);
  for (const auto& control : controls_) control->listen(listener);
}

}  // namespace vordane::window

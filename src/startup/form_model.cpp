#include "startup/form_model.h"

#include <utility>

#include "faults/kind_lists.h"
#include "language/form_controls.h"
#include "platform/control_types.h"
#include "platform/grid_columns.h"

namespace vordane::startup {
namespace {

constexpr std::pair<Action, std::u16string_view> buttons[] = {{Action::request, u"cmdRequest"},
                                                              {Action::reset, u"cmdReset"},
                                                              {Action::print, u"cmdPrint"},
                                                              {Action::clear, u"cmdClear"},
                                                              {Action::close, u"cmdClose"}};

// Odd and even rows of the grid.
constexpr int gridStyleSets = 2;

void addControl(window::Form& form, std::u16string_view name, std::u16string_view typeName, bool visible) {
  auto properties = window::designedProperties(typeName);
  if (typeName == u"SSDBGrid") {
    window::addColumns(properties, window::columnCount);
    window::addStyleSets(properties, gridStyleSets);
  }
  if (name == u"txtTimeTag") properties[u"Locked"] = true;
  properties[u"Visible"] = visible;
  form.add(std::u16string(name), -1, std::u16string(typeName), std::move(properties));
}

}  // namespace

window::Form makeFormModel() {
  auto properties = window::designedProperties(u"Form");
  properties[u"Caption"] = std::u16string{};
  properties[u"Visible"] = false;
  window::Form form{std::u16string(formName), std::move(properties)};
  for (const FormControl& control : formControls) addControl(form, control.name, control.typeName, true);
  for (const KindList& list : kindLists) addControl(form, list.name(), u"ComboBox", false);
  return form;
}

void readFaultTexts(const std::vector<std::u16string>& messages, window::Form& form, FaultTextTable& texts) {
  texts.setMessages(messages);
  for (const KindList& list : kindLists) {
    std::vector<std::u16string> items;
    for (const auto& item : form.control(list.name()).items()) items.push_back(item.text);
    texts.setList(list.kind, std::move(items));
  }
}

std::u16string_view buttonOfAction(Action action) {
  for (const auto& [code, name] : buttons)
    if (code == action) return name;
  return {};
}

}  // namespace vordane::startup

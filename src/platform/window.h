// The form as a portable model: controls with a type name, a name, an index and properties got and set by
// name. A property that the type lacks fails, as the loaders of the language database need. The view draws
// the model and hears of every change; nothing in here draws or knows Windows.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/automation.h"

namespace vordane::window {

using Value = automation::Value;

// A control, property, list entry or grid column that does not exist, or a value of the wrong type.
class PropertyError : public std::exception {
 public:
  explicit PropertyError(std::u16string_view what);
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  std::string what_;
};

class Control {
 public:
  // `properties` are the ones the control has, with their designed values.
  Control(std::u16string name, int index, std::u16string typeName,
          std::map<std::u16string, Value> properties);

  const std::u16string& name() const { return name_; }
  int index() const { return index_; }  // -1: not in a control array
  const std::u16string& typeName() const { return typeName_; }

  // Dotted paths name the parts of a property ("Font.Size", "StyleSets(2).Font.Name",
  // "Columns(4).Caption"); without regard to case. "FontName" and "FontSize" are other names of "Font.Name"
  // and "Font.Size". They throw PropertyError.
  bool has(std::u16string_view property) const;
  Value get(std::u16string_view property) const;
  void set(std::u16string_view property, Value value);

  std::u16string text(std::u16string_view property) const { return automation::toText(get(property)); }
  bool flag(std::u16string_view property) const { return automation::toBoolean(get(property)); }
  std::int32_t number(std::u16string_view property) const { return automation::toLong(get(property)); }

  // The list of a drop-down or list control; PropertyError on any other type.
  struct Entry {
    std::u16string text;
    std::int32_t itemData = 0;
  };
  bool isList() const;
  int addItem(std::u16string text);  // its position, which is the control's NewIndex
  void clearItems();
  void setItemData(int position, std::int32_t data);
  const std::vector<Entry>& items() const;
  int listIndex() const { return listIndex_; }  // -1: none chosen
  void setListIndex(int position);

  // Called after every change, with the property's path ("Items" and "ListIndex" for the list).
  using Listener = std::function<void(Control&, std::u16string_view property)>;
  void listen(Listener listener) { listener_ = std::move(listener); }

 private:
  std::map<std::u16string, Value>::const_iterator find(std::u16string_view name) const;
  void changed(std::u16string_view property);

  std::u16string name_;
  int index_;
  std::u16string typeName_;
  std::map<std::u16string, Value> properties_;
  std::vector<Entry> items_;
  int listIndex_ = -1;
  Listener listener_;
};

// The window itself is a control too (type name "Form"): Caption, Font, Left, Top, Width, Height, Visible,
// Enabled, MousePointer. Lengths are in 1/1440 inch.
class Form {
 public:
  Form(std::u16string name, std::map<std::u16string, Value> properties);

  const std::u16string& name() const { return self_.name(); }
  Control& self() { return self_; }
  const Control& self() const { return self_; }

  Control& add(std::u16string name, int index, std::u16string typeName,
               std::map<std::u16string, Value> properties);

  // A row's way of naming a control: index -1 is the plain control. Names ignore case. PropertyError.
  Control& control(std::u16string_view name, int index = -1);
  Control* find(std::u16string_view name, int index = -1);
  const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }

  void listen(const Control::Listener& listener);  // the form's own changes and every control's

 private:
  Control self_;
  std::vector<std::unique_ptr<Control>> controls_;
};

}  // namespace vordane::window

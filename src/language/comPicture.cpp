#include "language/comPicture.h"

#include <algorithm>

#include "language/language_databases.h"
#include "language/row_values.h"
#include "text/file_names.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::comPicture {
namespace {

using language::textOf;

constexpr std::u16string_view noPicture = u"-1";
constexpr std::u16string_view theWindow = u"me";

// Everything that one row needs besides itself.
struct Decoration {
  window::Form& form;
  const PictureSet& pictures;
  std::int16_t set;
  std::u16string_view directory;
  platform::Files& files;
  PictureLoader& loader;
};

bool takesBackground(const window::Control& control) {
  return control.typeName() == u"SSTree" || control.typeName() == u"SSListBar";
}

// The picture file of a row; empty when the row names none, one of another folder, or it does not exist.
std::u16string pictureFile(const Decoration& decoration, std::u16string name) {
  if (name.empty() || name == noPicture) return {};
  if (decoration.set != 0) name = MapPictureName(decoration.pictures, name);
  if (!text::isPlainFileName(name)) return {};
  std::u16string path = std::u16string(decoration.directory) + name;
  return decoration.files.exists(path) ? path : std::u16string{};
}

window::Control& baseOf(const Decoration& decoration, database::Recordset& row) {
  const std::int16_t index = automation::toInteger(row.get(u"BasePanelIndex"));
  const std::u16string name = textOf(row.get(u"BasePanel"));
  if (index == -1 && name == theWindow) return decoration.form.self();
  return decoration.form.control(name, index);
}

// A base that is no panel is out of sight while its picture is placed, and comes back even when that fails.
class HiddenBase {
 public:
  explicit HiddenBase(window::Control& base) : base_(IsPanelLike(base) ? nullptr : &base) {
    if (base_ != nullptr) base_->set(u"Visible", false);
  }
  HiddenBase(const HiddenBase&) = delete;
  HiddenBase& operator=(const HiddenBase&) = delete;
  ~HiddenBase() {
    try {
      show();
    } catch (const window::PropertyError&) {
      // It could be hidden, so it has the property.
    }
  }
  void show() {
    if (base_ != nullptr) base_->set(u"Visible", true);
    base_ = nullptr;
  }

 private:
  window::Control* base_;
};

// What an unreadable picture ends: its control has been found, and moved where it would stand.
const std::u16string& loaded(const Decoration& decoration, const std::u16string& path) {
  if (!decoration.loader.readable(path)) throw window::PropertyError(u"not a picture: " + path);
  return path;
}

void place(const Decoration& decoration, window::Control& control, window::Control& base,
           const std::u16string& path) {
  const std::int32_t width = base.number(u"Width");
  const std::int32_t height = base.number(u"Height");
  HiddenBase hidden(base);
  control.set(u"Left", std::int32_t{0});
  control.set(u"Top", std::int32_t{0});
  control.set(u"Width", width);
  control.set(u"Height", height);
  control.set(u"Picture", loaded(decoration, path));
  hidden.show();
}

void decorate(const Decoration& decoration, database::Recordset& row) {
  window::Control& control = language::controlOf(decoration.form, row);
  const std::u16string path = pictureFile(decoration, textOf(row.get(u"FileName")));
  if (path.empty()) return;
  if (takesBackground(control))
    control.set(u"PictureBackground", loaded(decoration, path));
  else
    place(decoration, control, baseOf(decoration, row), path);
}

}  // namespace

bool LoadPictureSet(database::Database& common, std::int16_t set, PictureSet& pictures) {
  return language::trapped([&] {
    const auto rows = common.openRecordset(language::statement::pictureSet.with({text::decimal(set)}));
    for (; !rows->atEnd(); rows->moveNext())
      pictures.push_back({textOf(rows->get(u"DefaultName")), textOf(rows->get(u"FileName"))});
    rows->close();
  });
}

std::u16string MapPictureName(const PictureSet& pictures, std::u16string_view name) {
  const auto found = std::find_if(pictures.begin(), pictures.end(), [&](const PictureName& picture) {
    return text::equalIgnoringCase(picture.DefaultName, name);
  });
  return found == pictures.end() ? std::u16string(name) : found->FileName;
}

bool IsPanelLike(const window::Control& control) {
  return control.typeName() == u"SSPanel" || control.typeName() == u"PictureBox";
}

bool ApplyBackground(window::Form& form, database::Database& own, database::Database& common,
                     std::int16_t set, std::u16string_view directory, platform::Files& files,
                     PictureLoader& loader) {
  PictureSet pictures;
  const bool loaded = LoadPictureSet(common, set, pictures);
  const Decoration decoration{form, pictures, set, directory, files, loader};
  return language::trapped([&] {
           const auto rows = own.openRecordset(language::statement::pictures.with({form.name()}));
           for (; !rows->atEnd(); rows->moveNext()) decorate(decoration, *rows);
           rows->close();
         }) &&
         (loaded || set == 0);
}

}  // namespace vordane::comPicture

// Background pictures and the picture sets that rename them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "platform/services.h"
#include "platform/window.h"

namespace vordane::comPicture {

struct PictureName {
  std::u16string DefaultName, FileName;
};
using PictureSet = std::vector<PictureName>;

// Loads pictures for the view; the value put into a control's Picture property is the path.
class PictureLoader {
 public:
  virtual ~PictureLoader() = default;
  virtual bool readable(std::u16string_view path) = 0;
};

bool LoadPictureSet(database::Database& common, std::int16_t set, PictureSet& pictures);
std::u16string MapPictureName(const PictureSet& pictures, std::u16string_view name);
bool IsPanelLike(const window::Control& control);

// True when all rows were applied; pictures placed before a failure stay.
bool ApplyBackground(window::Form& form, database::Database& own, database::Database& common,
                     std::int16_t set, std::u16string_view directory, platform::Files& files,
                     PictureLoader& loader);

}  // namespace vordane::comPicture

#include "platform/file_place.h"

#include "text/text.h"

namespace vordane::platform {
namespace {

bool isSeparator(char16_t c) {
  return c == u'\\' || c == u'/';
}

bool beginsWithTwo(std::u16string_view path) {
  return path.size() >= 2 && isSeparator(path[0]) && isSeparator(path[1]);
}

bool isDevicePrefix(std::u16string_view path) {
  return path.size() >= 4 && beginsWithTwo(path) && (path[2] == u'?' || path[2] == u'.') &&
         isSeparator(path[3]);
}

bool isShareBehindPrefix(std::u16string_view rest) {
  return rest.size() >= 4 && text::equalIgnoringCase(rest.substr(0, 3), u"UNC") && isSeparator(rest[3]);
}

bool isLetter(char16_t c) {
  return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

}  // namespace

bool liesOnNetwork(std::u16string_view path, const DriveIsRemote& driveIsRemote) {
  if (isDevicePrefix(path)) {
    path.remove_prefix(4);
    if (isShareBehindPrefix(path)) return true;
  } else if (beginsWithTwo(path)) {
    return true;
  }
  const bool hasDrive = path.size() >= 2 && isLetter(path[0]) && path[1] == u':';
  return hasDrive && driveIsRemote && driveIsRemote(path[0]);
}

}  // namespace vordane::platform

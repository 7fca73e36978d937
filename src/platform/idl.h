// The interface definition of an automation library, written from the member tables, so that the type
// library can't say anything else than what the calls do. Pure.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/member_table.h"

namespace vordane::automation {

struct LibraryTable {
  std::u16string_view name;
  std::u16string_view description;
  std::string_view libid;    // "{...}", upper case
  std::string_view version;  // "1.0"
  std::span<const ClassTable* const> classes;
};

// The whole IDL text (UTF-8, lines end in LF): one pure dispinterface for each class, named "_" and the
// class's name, and the class itself.
std::string idlText(const LibraryTable& library);

}  // namespace vordane::automation

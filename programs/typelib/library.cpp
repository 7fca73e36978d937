#include "library.h"

#include "pbx/cListRequest.h"
#include "pbx/cSLVRequest.h"

namespace vordane {

const automation::LibraryTable& vordaneLibrary() {
  static const automation::ClassTable* const classes[] = {&cListRequest::classTable(),
                                                          &cSLVRequest::classTable()};
  static const automation::LibraryTable library{u"Vordane10013", u"Displays and Manages PBX Fault Lists.",
                                                "{19BE82C0-AEA0-40EC-9A44-F9FDF18E0FBC}", "1.0", classes};
  return library;
}

}  // namespace vordane

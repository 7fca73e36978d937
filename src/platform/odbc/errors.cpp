#include "platform/odbc/errors.h"

namespace vordane::odbc {
namespace {

struct State {
  std::string_view begin;  // of the SQLSTATE: the first that fits decides
  int number;
};

constexpr State states[] = {
    {"08", number::connectionFailed},     // gone, or never there
    {"57P0", number::connectionFailed},   // the server is being stopped, has crashed, does not yet start
    {"25P03", number::connectionFailed},  // a transaction in which nothing was asked for too long
    {"28", number::connectionFailed},     // who are you?
    {"3D000", number::connectionFailed},  // no such database
    {"53300", number::connectionFailed},  // too many connections
    {"HYT01", number::connectionFailed},
    {"IM0", number::connectionFailed},  // the driver is not installed, or cannot be loaded
    {"55P03", number::locked},          // a lock that was not had in time
    {"40", number::locked},             // two steps that wait for each other
    {"23505", number::duplicateKey},
    {"23502", number::needsValue},
    {"23", number::badValue},
    {"22", number::badValue},     // too long, too large, not of its type
    {"2200H", number::badValue},  // no number left
    {"53100", number::diskFull},
    {"53200", number::outOfMemory},
    {"54000", number::badValue},  // larger than the server takes
    {"HY001", number::outOfMemory},
    {"42501", number::noPermission},
    {"25006", number::noPermission},  // a replica
    {"42P01", number::unknownTable},
    {"3F000", number::unknownTable},
    {"42703", number::unknownName},
    {"58", number::diskError},
    {"XX00", number::damaged},
};

}  // namespace

int numberOf(std::string_view state) {
  for (const State& known : states)
    if (state.starts_with(known.begin)) return known.number;
  return number::callFailed;
}

bool meansLost(std::string_view state) {
  return state.starts_with("08") || state.starts_with("57P0") || state == "25P03" || state == "HYT01";
}

std::u16string_view sentenceOf(std::string_view state) {
  return state == "25006" ? u"the server is a replica, which takes no changes" : u"";
}

}  // namespace vordane::odbc

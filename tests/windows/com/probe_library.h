// The classes that the tests of the automation layer serve to themselves: a probe that does what it is
// asked, and a bag that other processes create too.
#pragma once

#include "platform/idl.h"

namespace vordane::test {

const automation::ClassTable& probeTable();
const automation::ClassTable& bagTable();
const automation::LibraryTable& probeLibrary();

enum class ProbeMember : std::size_t {
  processId,
  flag,
  text,
  number,
  octet,
  item,
  fixed,
  add,
  join,
  echo,
  isSame,
  makeBag,
  setHost,
  callHost,
  callHostReference,
  getHost,
  raise,
  pause,
  letGo,
  hold,
  watch,
  callHostLater,
};

}  // namespace vordane::test

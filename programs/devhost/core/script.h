// Scripts of the development host: what it does, one statement a line. docs/automation.md lists them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/core/host.h"
#include "platform/automation.h"
#include "zulsim/core/line_reader.h"

namespace vordane::devhost {

enum class Verb : std::uint8_t {
  pbx,
  pbxInProcess,
  noPbx,
  create,
  use,
  release,
  call,
  get,
  put,
  registerExchange,
  show,
  hide,
  visible,
  createSchedule,
  run,
  cancel,
  background,
  wait,
  never,
  when,
  sleep,
  systemInfo,
  version,
  data,
  omit,
  raise,
  slow,
  dieOn,
  next,
  give,
  giveOn,
  hold,
  restore,
  die,
  note,
  quiet,
  loud,
  repeat,
};

inline constexpr int forever = -1;

struct Statement {
  int line = 0;
  Verb verb = Verb::note;
  std::u16string words;     // the statement as the trace repeats it
  std::u16string name;      // label, member, exchange, file
  std::u16string word;      // what is given or waited for
  std::u16string text;      // ProgID, error text, value, what a wait is for
  std::int32_t number = 0;  // ID, key, error code, repetitions
  std::int32_t second = 0;  // schedule action
  int milliseconds = 0;
  std::vector<automation::Value> values;  // arguments of a free call
  std::vector<Statement> block;
  std::optional<Answer> answer;  // of the next call of a member; nothing: as usual
  bool tolerated = false;        // "try": a failing call does not end the script
};

struct ParsedScript {
  std::vector<Statement> statements;
  std::vector<lines::Problem> problems;  // empty: the whole file could be read
};

ParsedScript parseScript(std::string_view utf8);

}  // namespace vordane::devhost

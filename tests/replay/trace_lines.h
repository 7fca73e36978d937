// Lines of a trace, for tests, without what all of them have.
#pragma once

#include <string>
#include <vector>

#include "replay/replay_trace.h"

namespace vordane::replay {

using Lines = std::vector<std::string>;

inline Lines operator+(Lines lines, const Lines& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

inline Lines traceOf(const Lines& fields, bool hosted = true) {
  const std::string at = R"({"at":"2026-11-23T06:45:12.345678Z",)";
  Lines lines{at + R"("event":"start","format":1,"version":"1.0.12","hosted":)" +
              (hosted ? "true" : "false") + R"(,"interactive":true,"exchange":"","words":64})"};
  for (const std::string& one : fields) lines.push_back(at + one + "}");
  return lines;
}

// The first of them is line 2, behind the start.
inline Recording recordingOf(const Lines& fields, bool hosted = true) {
  Notes notes;
  return readTrace(traceOf(fields, hosted), notes).at(0);
}

}  // namespace vordane::replay

// The numbers that Access engines give their errors, as far as callers of a database look at them or name
// one. The embedded engine fails with the same.
#pragma once

namespace vordane::database::number {

inline constexpr int noCurrentRecord = 3021;
inline constexpr int fileNotFound = 3024;
inline constexpr int diskFull = 3026;
inline constexpr int readOnly = 3027;
inline constexpr int outOfMemory = 3035;
inline constexpr int diskError = 3043;
inline constexpr int damaged = 3049;
inline constexpr int noPermission = 3051;
inline constexpr int unknownName = 3061;
inline constexpr int unknownTable = 3078;
inline constexpr int recordGone = 3167;
inline constexpr int locked = 3260;
inline constexpr int notADatabase = 3343;
inline constexpr int closed = 3420;

}  // namespace vordane::database::number

// The numbers that Access engines give their errors, as far as callers of a database know them. Every engine
// fails with the same.
#pragma once

namespace vordane::database::number {

inline constexpr int invalidOperation = 3001;
inline constexpr int noUpdateBegun = 3020;
inline constexpr int noCurrentRecord = 3021;
inline constexpr int duplicateKey = 3022;
inline constexpr int fileNotFound = 3024;
inline constexpr int diskFull = 3026;
inline constexpr int readOnly = 3027;
inline constexpr int diskError = 3043;
inline constexpr int damaged = 3049;
inline constexpr int noPermission = 3051;
inline constexpr int unknownName = 3061;
inline constexpr int syntax = 3075;
inline constexpr int unknownTable = 3078;
inline constexpr int callFailed = 3146;
inline constexpr int connectionFailed = 3151;
inline constexpr int recordGone = 3167;
inline constexpr int alreadyExists = 3204;
inline constexpr int locked = 3260;
inline constexpr int unknownItem = 3265;
inline constexpr int columnCount = 3307;
inline constexpr int needsValue = 3314;
inline constexpr int notADatabase = 3343;
inline constexpr int closed = 3420;
inline constexpr int badValue = 3421;
inline constexpr int outOfMemory = 3035;

}  // namespace vordane::database::number

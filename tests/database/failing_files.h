// Failures on demand: a file layer whose n-th write, sync or truncation fails, and an allocator whose n-th
// request does.
#pragma once

namespace vordane::sqlite::failing {

inline constexpr const char* fileLayer = "failing";

// Lays both under SQLite; once, before its first use.
void install();

// From now on the call after `calls` more fails, and with `lasting` every later one too; below 0 none does.
void failFileAfter(long calls, bool lasting);
void failAllocationAfter(long calls);
// True when the failure has happened.
bool fileFailed();
bool allocationFailed();

}  // namespace vordane::sqlite::failing

// Failures on demand: a file layer whose n-th call fails, and allocators whose n-th request does.
#pragma once

namespace vordane::sqlite::failing {

inline constexpr const char* fileLayer = "failing";

// Lays both under SQLite; once, before its first use.
void install();

// From now on the write, sync, truncation or deletion after `calls` more fails, and with `lasting` every
// later one too; below 0 none does. With `alsoReading` openings, looks, locks and reads count as well.
void failFileAfter(long calls, bool lasting, bool alsoReading = false);
// From now on SQLite's request for memory after `calls` more fails, and so for the program's own.
void failAllocationAfter(long calls);
void failOwnAllocationAfter(long calls);
// How often a file's lock for a reading was taken since the process began.
long readings();
// True when the failure has happened.
bool fileFailed();
bool allocationFailed();  // of either kind

}  // namespace vordane::sqlite::failing

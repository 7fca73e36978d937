// What a filter, saving, and looking for a flood cost among many rows.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "bench/store/bare_store.h"
#include "platform/database.h"

namespace vordane::bench {

// `rows` are exchange 1 of the file that `bare` has open, newest first.
void measureFilter(database::RowList& rows, BareStore& bare, const std::string& howMany);

// The same rows saved; `folder` is for the files.
void measureSaving(database::RowList& rows, BareStore& bare, const std::filesystem::path& folder,
                   const std::string& howMany);

// `rows` hold one flood of twelve faults, which are the oldest; `select` selects their exchange anew.
void measureFlood(database::RowList& rows, const std::function<void()>& select, const std::string& howMany);

}  // namespace vordane::bench

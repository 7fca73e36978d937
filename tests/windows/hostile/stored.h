// What a conversation with the host that behaves looks like, and what it stores.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vordane::hostile {

// The faults of an exchange, one line each, as another program reads them from the file.
std::vector<std::string> storedFaults(const std::u16string& database, std::u16string_view exchange);

const std::vector<std::string>& expectedCalls();
const std::vector<std::string>& expectedRows();

}  // namespace vordane::hostile

// Keys in order, rows by blocks.
#pragma once

#include <memory>
#include <span>

#include "platform/odbc/session.h"

namespace vordane::odbc {

std::unique_ptr<database::RowList> makeRowList(std::shared_ptr<Session> session, const Plan& plan,
                                               const std::vector<jet::Literal>& literals,
                                               std::span<const std::u16string_view> columns);

// The rows from position `first` on that are fetched together, each behind its key; empty where the row has
// gone.
std::vector<Fields> readBlock(Session& session, const Plan& plan, std::span<const std::int64_t> keys,
                              std::size_t first);

}  // namespace vordane::odbc

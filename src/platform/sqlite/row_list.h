// The keys of a statement's rows, for a grid that shows any part of them.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "platform/sqlite/plan.h"

namespace vordane::sqlite {

// Throws DatabaseError, for a column that the statement does not have too.
std::unique_ptr<database::RowList> makeRowList(std::shared_ptr<Opened> opened, Plan& plan,
                                               const std::vector<jet::Literal>& literals,
                                               std::span<const std::u16string_view> columns);

}  // namespace vordane::sqlite

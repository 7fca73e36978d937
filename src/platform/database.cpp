#include "platform/database.h"

#include "text/utf8.h"

namespace vordane::database {

DatabaseError::DatabaseError(int number, std::u16string description)
    : number_(number), description_(std::move(description)), what_(text::toUtf8(description_)) {}

}  // namespace vordane::database

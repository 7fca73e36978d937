// Text as an Access file stores it: UTF-16, little endian, or compressed where all characters are below 256.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vordane::access {

std::u16string jetText(std::span<const std::uint8_t> bytes);

}  // namespace vordane::access

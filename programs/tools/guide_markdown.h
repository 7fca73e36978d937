// Texts as they stand in Markdown.
#pragma once

#include <string>
#include <string_view>

namespace vordane::tools {

// Every sign that Markdown would read as its own gets a backslash.
inline std::string markdownText(std::string_view text) {
  std::string out;
  for (const char character : text) {
    if (std::string_view(R"(\`*_{}[]<>()#+!|$~^@")").find(character) != std::string_view::npos) out += '\\';
    out += character;
  }
  return out;
}

}  // namespace vordane::tools

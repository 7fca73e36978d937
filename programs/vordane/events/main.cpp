// Makes the message table of one language, as the resource of the program that the system reads it from:
// events.tsv comes in, the table goes out. Ends with 1 and names what is wrong with the texts.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/event_log.h"
#include "text/utf8.h"

namespace {

using namespace vordane;

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields(1);
  for (const char character : line)
    if (character == '\t')
      fields.emplace_back();
    else
      fields.back() += character;
  return fields;
}

// {1} becomes %1, which the system fills in; a ! behind it would begin a format.
std::u16string asMessage(const std::u16string& text) {
  std::u16string message;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool place = text[at] == u'{' && at + 2 < text.size() && text[at + 2] == u'}';
    if (place) {
      if (at + 3 < text.size() && text[at + 3] == u'!') throw std::runtime_error("a ! behind a value");
      message += {u'%', text[at + 1]};
      at += 2;
    } else {
      message += text[at];
      if (text[at] == u'%') message += u'%';
    }
  }
  return message;
}

std::map<int, std::u16string> readTexts(std::istream& in) {
  std::map<int, std::u16string> texts;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    const auto fields = fieldsOf(line);
    if (fields.size() != 3) throw std::runtime_error("not three columns: " + line);
    const std::u16string text =
        asMessage(text::fromUtf8(fields[1])) + u"\r\n\r\n" + asMessage(text::fromUtf8(fields[2])) + u"\r\n";
    if (!texts.emplace(std::stoi(fields[0]), text).second) throw std::runtime_error("twice: " + line);
  }
  return texts;
}

void put(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i) & 0xFF);
}

// Length, mark of UTF-16, the text and its end, up to a multiple of four bytes.
std::string entryOf(const std::u16string& text) {
  std::string units;
  for (const char16_t unit : text + u'\0') put(units, unit, 2);
  if (units.size() % 4 != 0) put(units, 0, 2);
  std::string entry;
  put(entry, static_cast<std::uint32_t>(units.size() + 4), 2);
  put(entry, 1, 2);
  return entry + units;
}

// The number of blocks; of each its first and last identifier and where its entry lies; the entries. In the
// order of the identifiers.
std::string tableOf(const std::map<std::uint32_t, std::u16string>& messages) {
  std::string blocks, entries;
  const std::size_t entriesAt = 4 + 12 * messages.size();
  for (const auto& [identifier, text] : messages) {
    put(blocks, identifier, 4);
    put(blocks, identifier, 4);
    put(blocks, static_cast<std::uint32_t>(entriesAt + entries.size()), 4);
    entries += entryOf(text);
  }
  std::string table;
  put(table, static_cast<std::uint32_t>(messages.size()), 4);
  return table + blocks + entries;
}

std::string makeTable(std::istream& in) {
  const auto texts = readTexts(in);
  std::map<std::uint32_t, std::u16string> messages;
  for (const auto& kind : platform::eventKinds) {
    const auto found = texts.find(static_cast<int>(kind.event));
    if (found == texts.end())
      throw std::runtime_error("no text for " + std::to_string(static_cast<int>(kind.event)));
    messages.emplace(platform::eventIdentifier(kind.event), found->second);
  }
  if (messages.size() != texts.size()) throw std::runtime_error("a text for a number that no event has");
  return tableOf(messages);
}

}  // namespace

int main() try {
  const std::string table = makeTable(std::cin);
  return std::fwrite(table.data(), 1, table.size(), stdout) == table.size() ? 0 : 1;
} catch (const std::exception& failure) {
  std::cerr << "events.tsv: " << failure.what() << "\n";
  return 1;
}

// vordane-tools decode: recorded faults in, one message a line out.
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "commands.h"
#include "console.h"
#include "faults/cFaultDisplay.h"
#include "language_texts.h"
#include "lines.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "text/utf8.h"
#include "text_sources.h"

namespace vordane::tools {
namespace {

struct Options {
  std::string language, messages, lists;  // file names; empty: not given
  bool narrow = false;
  bool explain = false;
};

void readTexts(const Options& options, FaultTextTable& texts) {
  if (!options.language.empty())
    return readLanguageDatabase(*sqlite::makeEngine(startup::databases), options.language, texts);
  readMessages(options.messages, texts);
  if (!options.lists.empty()) readLists(options.lists, texts);
}

// One recorded fault: its record and both data texts. The third field runs to the end of the line.
struct Record {
  std::u16string record, first, second;

  void read(std::string_view line) {
    for (std::u16string* field : {&record, &first}) {
      field->clear();
      text::appendUtf16(takeField(line), *field);
    }
    second.clear();
    text::appendUtf16(line, second);
  }
};

class Decode {
 public:
  Decode(const FaultTextTable& texts, const bool& wide, std::string& out)
      : decoder_(texts, wide), out_(out) {}

  void plain(const Record& record) {
    decoder_.GetFaultMessage(record.record, record.first, record.second, message_);
    escaped(message_);
    out_ += '\n';
  }

  // The message, then for each value a line of its own: TAB, the places of the characters it came from
  // (from 1), TAB, those characters, TAB, the value.
  void explained(const Record& record) {
    plain(record);
    const std::u16string data = record.first + u" " + record.second;
    for (const cFaultDisplay::Piece& piece : decoder_.explain(record.record, record.first, record.second))
      if (!piece.sources.empty()) proof(piece, data);
  }

 private:
  void proof(const cFaultDisplay::Piece& piece, std::u16string_view data) {
    std::u16string characters;
    char separator = '\t';
    for (const cFaultDisplay::Source& source : piece.sources) {
      out_ += separator;
      out_ += std::to_string(source.begin + 1) + "-" + std::to_string(source.end);
      characters += data.substr(source.begin, source.end - source.begin);
      separator = ',';
    }
    out_ += '\t';
    escaped(characters);
    out_ += '\t';
    escaped(piece.text);
    out_ += '\n';
  }

  void escaped(std::u16string_view text) {
    bytes_.clear();
    text::appendUtf8(text, bytes_);
    appendEscaped(bytes_, out_);
  }

  cFaultDisplay decoder_;
  std::string& out_;
  std::u16string message_;
  std::string bytes_;
};

void decodeStream(const FaultTextTable& texts, const Options& options, std::FILE* in, std::FILE* out) {
  const bool wide = !options.narrow;
  FileLines lines(in);
  BlockWriter writer(out, isTerminal(out));
  Decode decode(texts, wide, writer.buffer());
  Record record;
  while (const auto line = lines.next()) {
    record.read(*line);
    options.explain ? decode.explained(record) : decode.plain(record);
    writer.flushIfLarge();
  }
  writer.finish();
}

}  // namespace

void declareDecode(options::Command& command) {
  const auto given = std::make_shared<Options>();
  command.option("--language", "FILE", given->language, "the texts of a language database (VORDANE.LNG)");
  command.option("--messages", "FILE", given->messages, "the texts of a source file: number, TAB, text");
  command.option("--lists", "FILE", given->lists,
                 "the kinds' lists of a source file: list, TAB, place, TAB, text");
  command.flag("--narrow", given->narrow, "module numbers of 6 bits, as older exchanges send them");
  command.flag("--explain", given->explain,
               "behind each message its values with the characters they came from");
  command.exactlyOne({"--language", "--messages"});
  command.needs("--lists", "--messages");
  command.runs([given] {
    FaultTextTable texts;
    readTexts(*given, texts);
    useBinaryStandardStreams();
    decodeStream(texts, *given, stdin, stdout);
    return 0;
  });
}

}  // namespace vordane::tools

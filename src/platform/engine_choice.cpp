#include "platform/engine_choice.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <utility>

#include "platform/database_numbers.h"

namespace vordane::database {
namespace {

using namespace std::string_view_literals;

// A data source is a text that a person may have written: a mark before it, and any case.
bool beginsDataSource(std::string_view bytes) {
  constexpr std::string_view mark = "\xEF\xBB\xBF", section = "[ODBC]";
  if (bytes.starts_with(mark)) bytes.remove_prefix(mark.size());
  bytes = bytes.substr(0, section.size());
  return std::equal(bytes.begin(), bytes.end(), section.begin(), section.end(), [](char c, char wanted) {
    return c == wanted || (wanted >= 'A' && wanted <= 'Z' && c == wanted + 32);
  });
}

class EngineChoice : public Engine {
 public:
  EngineChoice(std::unique_ptr<Engine> access, std::unique_ptr<Engine> embedded, Held held,
               std::unique_ptr<Engine> server)
      : access_(std::move(access)),
        embedded_(std::move(embedded)),
        server_(std::move(server)),
        held_(std::move(held)) {}

  std::unique_ptr<Database> open(std::u16string_view path, bool readOnly) override {
    switch (kindOf(path)) {
      case FileKind::access:
        return access_->open(path, readOnly);
      case FileKind::embedded:
        return embedded_->open(path, readOnly);
      case FileKind::dataSource:
        if (server_) return server_->open(path, readOnly);
        break;
      case FileKind::missing:
        throw DatabaseError(number::fileNotFound, std::u16string(path));
      case FileKind::unknown:
        break;
    }
    throw DatabaseError(number::notADatabase, std::u16string(path));
  }

 private:
  FileKind kindOf(std::u16string_view path) const {
    const auto end = std::chrono::steady_clock::now() + held_.wait;
    for (;;) {
      const FileKind kind = fileKind(path);
      if (kind != FileKind::unknown || !held_.isHeld || !held_.isHeld(path)) return kind;
      if (std::chrono::steady_clock::now() >= end)
        throw DatabaseError(number::locked, u"The database is locked by another process.");
      std::this_thread::sleep_for(held_.wait / 50);
    }
  }

  std::unique_ptr<Engine> access_;
  std::unique_ptr<Engine> embedded_;
  std::unique_ptr<Engine> server_;  // null: no program that needs one
  Held held_;
};

}  // namespace

FileKind fileKind(std::u16string_view path) {
  const std::filesystem::path file(path);
  std::error_code failure;
  if (!std::filesystem::is_regular_file(file, failure)) return FileKind::missing;
  std::array<char, 19> head{};
  std::ifstream in(file, std::ios::binary);
  in.read(head.data(), head.size());
  const std::string_view bytes(head.data(), static_cast<std::size_t>(in.gcount()));
  if (bytes.starts_with("SQLite format 3\0"sv)) return FileKind::embedded;
  if (bytes.starts_with("\0\1\0\0Standard Jet DB"sv) || bytes.starts_with("\0\1\0\0Standard ACE D"sv))
    return FileKind::access;
  if (beginsDataSource(bytes)) return FileKind::dataSource;
  return FileKind::unknown;
}

std::unique_ptr<Engine> makeEngineChoice(std::unique_ptr<Engine> access, std::unique_ptr<Engine> embedded,
                                         Held held, std::unique_ptr<Engine> server) {
  return std::make_unique<EngineChoice>(std::move(access), std::move(embedded), std::move(held),
                                        std::move(server));
}

}  // namespace vordane::database

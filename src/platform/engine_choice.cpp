#include "platform/engine_choice.h"

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

class EngineChoice : public Engine {
 public:
  EngineChoice(std::unique_ptr<Engine> access, std::unique_ptr<Engine> embedded, Held held)
      : access_(std::move(access)), embedded_(std::move(embedded)), held_(std::move(held)) {}

  std::unique_ptr<Database> open(std::u16string_view path, bool readOnly) override {
    switch (kindOf(path)) {
      case FileKind::access:
        return access_->open(path, readOnly);
      case FileKind::embedded:
        return embedded_->open(path, readOnly);
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
  return FileKind::unknown;
}

std::unique_ptr<Engine> makeEngineChoice(std::unique_ptr<Engine> access, std::unique_ptr<Engine> embedded,
                                         Held held) {
  return std::make_unique<EngineChoice>(std::move(access), std::move(embedded), std::move(held));
}

}  // namespace vordane::database

// Tables and rows as bytes, between the reading child and its parent. Both run on one machine from one
// program file, so numbers travel as they lie in memory.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/access/access_file.h"

namespace vordane::access {

// Writes what it hears through `send`, in pieces of any size.
class StreamWriter : public Visitor {
 public:
  explicit StreamWriter(std::function<void(std::string_view)> send) : send_(std::move(send)) {}
  void beginTable(const Table& table) override;
  void row(const std::vector<Value>& values) override;
  void endTable() override;
  void error(std::string_view what);
  void endOfFile();

 private:
  std::function<void(std::string_view)> send_;
};

// Reads such a stream, whoever wrote it: what is not exactly as above is an error, never a value that the
// type does not have; `receive` fills a buffer whole or throws AccessError. Returns after endOfFile; throws
// AccessError for an error that was sent and for bytes that make no sense.
void readStream(const std::function<void(void* buffer, std::size_t size)>& receive, Visitor& visitor);

}  // namespace vordane::access

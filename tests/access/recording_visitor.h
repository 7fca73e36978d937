// Keeps what a reader of Access files tells.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/access/access_file.h"

namespace vordane::access {

struct RecordingVisitor : Visitor {
  struct Content {
    Table table;
    std::vector<std::vector<Value>> rows;
    bool ended = false;
  };
  std::map<std::u16string, Content> tables;
  Content* current = nullptr;

  void beginTable(const Table& table) override { current = &(tables[table.name] = {table, {}, false}); }
  void row(const std::vector<Value>& values) override { current->rows.push_back(values); }
  void endTable() override { current->ended = true; }
};

}  // namespace vordane::access

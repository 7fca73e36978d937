// The texts of a language database as sources again: the way back from `language build`.
#pragma once

#include <filesystem>

#include "language_source.h"
#include "language_tables.h"
#include "platform/access/access_file.h"

namespace vordane::tools {

// Collects the texts of what it hears. VORDANE.LNG has all but those of common_boxes.tsv and
// picture_sets.tsv, which Common.LNG has.
class TextExport : public access::Visitor {
 public:
  void beginTable(const access::Table& table) override;
  void row(const std::vector<access::Value>& values) override;
  void endTable() override {}

  // Writes one file for each table heard of into `folder` (those that all languages have in common into
  // "shared" beside it, unless they are there already), and returns them. Throws ToolError.
  std::vector<std::filesystem::path> write(const std::filesystem::path& folder) const;
  // Rows that the sources have no form for, each with what is not kept.
  const Problems& problems() const { return problems_; }

 private:
  struct File {
    std::string name;
    bool shared = false;
    SourceRows rows;
  };
  File& file(const std::string& name, bool shared);
  void take(const LanguageTable& table);
  std::u16string field(std::u16string_view column);
  bool isOwnForm();
  void takeProject(const LanguageTable& table);

  bool common_ = false;
  access::Table table_;
  std::vector<access::Value> values_;
  std::vector<File> files_;
  Problems problems_;
};

}  // namespace vordane::tools

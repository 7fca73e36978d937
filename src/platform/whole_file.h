// A file that takes its name when it has been written whole: until then it lies beside that name under
// another one, and what stood under the name stays. One that is not completed goes with this object.
#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

namespace vordane::platform {

class WholeFile {
 public:
  explicit WholeFile(std::filesystem::path target) : target_(std::move(target)) {}
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;
  ~WholeFile();

  bool begin();                        // false when no file may be made there
  bool write(std::string_view bytes);  // false when the disk is full
  bool end();                          // likewise; nothing is written behind it
  // Gives it the name. False when another program holds the file that has it; it may be asked for again.
  bool takeName();

 private:
  bool choosePending();

  std::filesystem::path target_, pending_;  // pending: empty while there is none
  std::ofstream out_;
};

}  // namespace vordane::platform

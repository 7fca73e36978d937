// Fault lists as an exchange sends them, a file to take them into, and the time that it takes.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/store/bare_store.h"
#include "fakes/memory_store_form.h"
#include "platform/database.h"
#include "store/fault_store.h"

namespace vordane::bench {

inline constexpr std::size_t lists = 25;

// A new FAULT.MDB in the folder for temporary files, which goes with the object.
class BenchFile {
 public:
  explicit BenchFile(const char* name);
  ~BenchFile();
  BenchFile(const BenchFile&) = delete;
  BenchFile& operator=(const BenchFile&) = delete;

  std::unique_ptr<database::Database> open() { return engine_->open(path_.u16string(), false); }
  database::Engine& engine() { return *engine_; }
  std::string path() const { return path_.string(); }
  std::u16string path16() const { return path_.u16string(); }

 private:
  std::filesystem::path path_;
  std::unique_ptr<database::Engine> engine_;
};

using Answer = std::vector<std::u16string>;  // four entries for each fault

// Faults of every kind, four in a minute, oldest first; each list goes on where the one before it ended.
Answer answerOf(std::size_t list, std::size_t length);

// When an exchange reports fault `fault` of all that it ever sends.
std::u16string dateOf(std::size_t fault);

// The columns of one list's rows.
std::vector<Fault> rowsOf(fakes::MemoryStoreForm& form, const Answer& answer);

// Takes the lists in, one after the other; returns the seconds of the processor.
double takeIn(fakes::MemoryStoreForm& form, store::FaultStore& store, const std::vector<Answer>& answers);

}  // namespace vordane::bench

// The baseline of the store's benchmarks: the same engine, tables, indexes and durability, driven by bare
// prepared statements whose values were worked out beforehand.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vordane::bench {

struct Fault {
  std::int16_t id;
  std::u16string fault, alarm, cpu, date, description;
};

// What the engine's fault index holds of a fault.
struct FaultKeys {
  std::string moment, kind;
  std::int64_t hash;
};
std::vector<FaultKeys> keysOf(const std::vector<Fault>& faults);

class BareStore {
 public:
  explicit BareStore(const std::string& path);
  ~BareStore();

  // Looks each fault up and adds it when there is none; commits every 500 ms and at the end.
  void ingest(const std::vector<Fault>& faults, const std::vector<FaultKeys>& keys);
  // The same loop without the additions.
  std::size_t lookUp(const std::vector<Fault>& faults, const std::vector<FaultKeys>& keys);
  // The keys of an exchange's rows, newest first, as the fault index holds them.
  std::vector<std::int64_t> scanKeys(std::int16_t id);
  // Goes along the fault index of an exchange, every column of it; the bytes met.
  std::size_t walkIndex(std::int16_t id);
  // Of an exchange's rows those of these kinds within these times, by a scan of the fault index; bounds and
  // kinds are keys as the index holds them.
  std::vector<std::int64_t> filteredKeys(std::int16_t id, const std::string& since, const std::string& until,
                                         const std::vector<std::string>& kinds);
  // The keys of an exchange's rows in an order, by the engine's own sorting.
  std::vector<std::int64_t> orderedKeys(std::int16_t id, const char* order);
  // Reads the columns of an exchange's rows, newest first, each by its key; returns the bytes of the texts.
  std::size_t readAll(std::int16_t id);
  void deleteExchange(std::int16_t id);
  void run(const char* sql);

 private:
  std::vector<std::int64_t> keysBy(const std::string& sql, std::int16_t id);
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vordane::bench

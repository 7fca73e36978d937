// The baseline of the benchmarks of a shared store: the same driver, called by hand. Statements are prepared
// once, what they take was worked out beforehand, and each is a transaction of its own.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/odbc/api.h"

namespace vordane::bench {

class BareDriver {
 public:
  explicit BareDriver(std::u16string connection);
  ~BareDriver();
  BareDriver(const BareDriver&) = delete;
  BareDriver& operator=(const BareDriver&) = delete;

  // A statement with `?` for each value. Throws std::runtime_error with what the driver says.
  void run(const std::string& statement, const std::vector<std::u16string>& values = {});
  // The whole numbers that it gives, one a row.
  std::vector<std::int64_t> numbers(const std::string& statement,
                                    const std::vector<std::u16string>& values = {});

 private:
  odbc::Handle execute(const std::string& statement, const std::vector<std::u16string>& values);
  void check(odbc::Return result, std::int16_t kind, odbc::Handle handle) const;

  odbc::Api api_;
  odbc::Api::Function<odbc::Handle, std::uint16_t, std::int16_t, void*, odbc::Length, odbc::Length*>
      bindColumn_;
  odbc::Handle environment_ = nullptr, connection_ = nullptr;
  std::unordered_map<std::string, odbc::Handle> prepared_;
};

}  // namespace vordane::bench

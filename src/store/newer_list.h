// Whether the store holds a newer list of the exchange shown than the window shows: another station may have
// fetched one. A rule over what it is told; whoever owns it asks while the window is seen. One thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/database.h"

namespace vordane::store {

class NewerList {
 public:
  using Pause = std::chrono::milliseconds;
  // What another station has saved is told within 5 s. After a failure, which may have taken its time, the
  // pauses become longer.
  static constexpr Pause betweenQuestions{4'000}, afterFailure{15'000}, longestPause{240'000};

  struct Shown {
    std::int64_t exchange = 0;
    std::u16string name, listed;  // `listed` as the store keeps it
    std::uint32_t display = 0;    // other than before, when the rows were read anew
    bool operator==(const Shown&) const = default;
  };

  // May fail; null where the store does not tell what came.
  using Store = std::function<std::shared_ptr<database::Arrivals>()>;
  // Asks the store one question, or none while nothing is shown or a newer list is known. True when one has
  // become known. A failure is no answer: it says nothing. Never throws DatabaseError.
  bool ask(const std::optional<Shown>& shown, const Store& store);
  // When the next question is due.
  Pause pause() const { return pause_; }

 private:
  bool isNewer(const database::Latest& latest);

  std::optional<Shown> shown_;
  std::optional<std::int64_t> mark_;  // all events up to it are shown, or are others'
  bool known_ = false;
  Pause pause_ = betweenQuestions;
};

}  // namespace vordane::store

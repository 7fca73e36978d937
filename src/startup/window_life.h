// How far the window's life has come, who uses it, and the calls under way in it. A life only goes forward;
// each step is taken once, and who asks for it learns whether it was the first. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vordane::startup {

class WindowLife {
 public:
  enum class Stage {
    unborn,
    loading,   // also what a load that failed leaves behind
    loaded,    //
    ending,    // from here on nothing reaches window or database
    told,      // the host has heard of the ending
    unloaded,  //
    over,      // the process was asked to end
  };

  Stage stage() const { return stage_; }
  bool alive() const { return stage_ < Stage::ending; }
  bool CheckLoadError() const { return stage_ == Stage::loading; }
  bool drawn() const { return stage_ > Stage::unborn && stage_ < Stage::unloaded; }

  // True the first time, and never once an ending has begun.
  bool beginLoad() { return from(Stage::unborn, Stage::loading); }
  void endLoad() { from(Stage::loading, Stage::loaded); }
  // True the first time. A window that was never loaded has nothing to unload.
  bool beginEnding() {
    if (!alive()) return false;
    stage_ = stage_ == Stage::unborn ? Stage::unloaded : Stage::ending;
    return true;
  }
  void hostTold() { from(Stage::ending, Stage::told); }

  struct Unloading {
    bool begins = false;        // nobody has unloaded it before
    bool endingBegins = false;  // nor begun an ending
    bool hostKnows = false;
  };
  Unloading beginUnload() {
    if (!drawn()) return {};
    const Stage before = std::exchange(stage_, Stage::unloaded);
    return {true, before < Stage::ending, before == Stage::told};
  }
  // True the first time.
  bool endProcess() { return std::exchange(stage_, Stage::over) != Stage::over; }

  // --- its users
  void forgetUsers() { users_ = 0; }
  std::int16_t IncrementCount() { return ++users_; }
  std::int16_t DecrementCount() { return --users_; }
  bool hasUsers() const { return users_ >= 1; }

  // --- calls
  // While one of these exists a call is under way.
  class Entry {
   public:
    explicit Entry(WindowLife& life) : life_(life) { ++life_.depth_; }
    ~Entry() {
      if (--life_.depth_ == 0) life_.retired_.clear();
    }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

   private:
    WindowLife& life_;
  };
  bool callUnderWay() const { return depth_ > 0; }
  // Keeps what an ending has let go of until the last call under way, which may still name it, has returned.
  void retire(std::shared_ptr<void> thing) { retired_.push_back(std::move(thing)); }

 private:
  bool from(Stage before, Stage after) {
    if (stage_ != before) return false;
    stage_ = after;
    return true;
  }

  Stage stage_ = Stage::unborn;
  std::int16_t users_ = 0;
  int depth_ = 0;
  std::vector<std::shared_ptr<void>> retired_;
};

}  // namespace vordane::startup

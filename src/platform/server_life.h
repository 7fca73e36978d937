// When an automation server has done its work. Pure counting; one thread.
#pragma once

namespace vordane::platform {

class ServerLife {
 public:
  // `endsItself`: an object whose class deals with its last release itself; from then on nothing here
  // ends the process.
  void created(bool endsItself) {
    ++objects_;
    everUsed_ = true;
    selfEnding_ = selfEnding_ || endsItself;
  }
  void released() { --objects_; }
  void locked(bool on) {
    locks_ += on ? 1 : -1;
    everUsed_ = true;
  }

  // Nobody holds anything any more, after somebody did.
  bool over() const { return everUsed_ && !selfEnding_ && objects_ == 0 && locks_ == 0; }
  // Whoever had this process started never created anything.
  bool neverUsed() const { return !everUsed_; }

 private:
  int objects_ = 0;
  int locks_ = 0;
  bool everUsed_ = false;
  bool selfEnding_ = false;
};

}  // namespace vordane::platform

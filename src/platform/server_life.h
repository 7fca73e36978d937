// When an automation server has done its work. Pure counting; one thread.
#pragma once

namespace vordane::platform {

class ServerLife {
 public:
  // Making an object may take long and serve other calls meanwhile: whoever waits for one uses the process
  // already. Each `creating` is followed by one `created` or one `failed`.
  void creating() {
    ++objects_;
    everUsed_ = true;
  }
  // `endsItself`: an object whose class deals with its last release itself; from then on nothing here
  // ends the process.
  void created(bool endsItself) { selfEnding_ = selfEnding_ || endsItself; }
  void failed() { --objects_; }
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

// Makes calls that may take seconds, so that their caller can do something else meanwhile: paint.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "platform/odbc/api.h"

namespace vordane::odbc {

// Owns a thread, once one is needed. One caller.
class Waiter {
 public:
  using Meanwhile = std::function<void()>;

  Waiter() = default;
  ~Waiter();
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

  // Called on the caller's thread, again and again while a call takes long; never throws. Empty: nothing is.
  void setMeanwhile(Meanwhile meanwhile) { meanwhile_ = std::move(meanwhile); }

  // Ends with the call's result, when it has ended. Without something to do meanwhile it is made on this
  // thread.
  Return call(const std::function<Return()>& step);

 private:
  void work();

  Meanwhile meanwhile_;
  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable changed_;
  const std::function<Return()>* step_ = nullptr;  // to be made; null when it has been
  Return result_ = 0;
  bool ending_ = false;
};

}  // namespace vordane::odbc

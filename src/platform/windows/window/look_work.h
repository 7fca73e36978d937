// What has come since the person looked last: which rows carry a mark, how many new faults stand behind each
// entry of the drop-down, where the next new one is, and when the person has looked. Reads on in pieces from
// a timer of its own, and now and then looks whether others have stored something. While an answer is waited
// for or a box stands it rests; where nobody looks, and in a store that can't tell what came, there is
// nothing of it.
//
// The rows keep their marks while the person stays: a look ends when another exchange is shown, or when the
// window comes to the front anew. One thread.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "list/last_look.h"
#include "list/looking.h"
#include "list/new_rows.h"

namespace vordane::window::win32 {

class LookWork {
 public:
  struct Around {
    std::function<ListUse()> use;                                   // what the form allows now
    std::function<std::shared_ptr<database::Arrivals>()> arrivals;  // of the store that is open; may fail
    std::function<std::vector<std::int64_t>()> exchanges;           // that the drop-down lists
    std::function<std::optional<std::int64_t>()> shown;             // the one whose faults are shown
    std::function<void()> marksChanged, numbersChanged;             // what is drawn of them is out of date
  };

  LookWork(list::Desk& desk, platform::SettingsStore& settings) : rows_(desk), last_(settings) {}
  void create(HWND frame, Around around);
  void forget();  // the window goes

  void rowsSet();       // other rows are shown, or the same read anew
  void frontChanged();  // the window has come to the front, or gone from there, or may have
  bool timer(WPARAM id);

  // Whether rows can be told to be new at all.
  bool offered() const { return begun_.has_value(); }
  bool isNew(std::size_t row) const { return begun_ && rows_.isNew(row, *begun_); }
  std::optional<std::size_t> next(std::optional<std::size_t> from) const;
  // How many of an exchange's faults are new, as text; empty for none.
  std::u16string newFaults(std::int64_t exchange) const;

 private:
  bool inFront() const;
  void rest();
  void work();
  void readOn(const std::function<bool()>& again);
  void see();
  void lookBegins();
  void wake();

  Around around_;
  HWND frame_ = nullptr;
  list::NewRows rows_;
  list::LastLook last_;
  list::Looking looking_;
  std::optional<std::int64_t> exchange_, begun_;  // the one shown, and its mark when the look began
  bool front_ = false;
  ULONGLONG pollAt_ = 0;
};

}  // namespace vordane::window::win32

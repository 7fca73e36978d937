// A view that draws nothing and remembers what it was told.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/view.h"

namespace vordane::fakes {

class MemoryView : public window::View {
 public:
  void attach(window::Form&, window::ViewEvents& given) override {
    attached = true;
    events = &given;
  }
  void detach() override { attached = false; }
  void setVisible(bool on) override { shown = on; }
  bool visible() override { return shown; }
  void refresh() override { ++refreshed; }
  void setInputEnabled(bool on) override { inputEnabled = on; }
  void setHourglass(bool on) override { hourglass = on; }
  void startTimer(int milliseconds) override { timer = milliseconds; }
  void stopTimer() override { timer = 0; }
  void setWords(window::Form* form) override {
    words = form;
    ++wordsSet;
  }
  void setRows(window::GridSource* source) override {
    rows = source;
    ++rowsSet;
  }
  void setSortMark(int column, bool down) override {
    sortColumn = column;
    sortDescending = down;
  }
  void setLamp(bool major, bool lit) override { (major ? majorLit : minorLit) = lit; }
  void setLampNote(std::u16string_view note) override { lampNote = note; }
  void setStatus(int part, std::u16string_view text) override { status[part] = text; }
  void setNotice(std::u16string_view text) override { notice = text; }
  void setNoticeKind(window::NoticeKind kind) override { noticeKind = kind; }
  // Reads the first rows as a screen would; while a step holds them, what is drawn stays.
  void paintNow() override {
    painted.push_back(status);
    if (rows != nullptr && rows->size() > 0 && rows->list() == nullptr) return;
    screen.clear();
    for (std::size_t i = 0; rows != nullptr && i < rows->size() && i < 10; ++i)
      if (const auto row = rows->row(i)) screen.push_back(row->description);
  }
  void popUpMenu(std::u16string_view) override {}
  void showWhatsThis(window::Control&, std::u16string_view) override {}
  Size screenSize() override { return {19200, 10800}; }
  Size windowSize() override { return {9000, 6000}; }
  void moveTo(std::int32_t left, std::int32_t top) override { place = {left, top}; }
  std::pair<std::int32_t, std::int32_t> position() override { return place; }

  window::ViewEvents* events = nullptr;  // who hears what a person does
  bool attached = false, shown = false, inputEnabled = true, hourglass = false;
  int timer = 0;
  window::GridSource* rows = nullptr;
  int rowsSet = 0, refreshed = 0, wordsSet = 0;
  window::Form* words = nullptr;
  int sortColumn = -1;
  bool sortDescending = false;
  bool majorLit = false, minorLit = false;
  std::map<int, std::u16string> status;
  std::u16string notice, lampNote;
  window::NoticeKind noticeKind = window::NoticeKind::hint;
  std::vector<std::map<int, std::u16string>> painted;
  std::vector<std::u16string> screen;
  std::pair<std::int32_t, std::int32_t> place{0, 0};
};

}  // namespace vordane::fakes

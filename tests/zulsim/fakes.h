// A program around the simulator and a caller behind it, both in memory.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "text/utf8.h"
#include "zulsim/core/exchange_server.h"
#include "zulsim/core/scenario_parser.h"

namespace vordane::zulsim {

// Time passes only when the test says so.
class HandTimers : public Services {
 public:
  void after(int milliseconds, std::function<void()> step) override {
    waiting_.push_back({now_ + milliseconds, std::move(step)});
  }
  void pause(int milliseconds) override {
    now_ += milliseconds;
    paused += milliseconds;
  }
  void log(std::u16string_view line) override { lines.push_back(text::toUtf8(line)); }
  bool taken(std::u16string_view word) override {
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end()) return false;
    words.erase(found);
    return true;
  }
  void give(std::u16string_view word) override { words.emplace_back(word); }
  void vanish() override { ++vanished; }

  // Runs what falls due within that time, in the order it does.
  void pass(int milliseconds) {
    passUntil([] { return false; }, milliseconds);
  }

  // The same, but only until `done` says so; whether it did.
  bool passUntil(const std::function<bool()>& done, int milliseconds) {
    const int end = now_ + milliseconds;
    while (!done()) {
      const auto next = std::min_element(waiting_.begin(), waiting_.end(),
                                         [](const Step& a, const Step& b) { return a.due < b.due; });
      if (next == waiting_.end() || next->due > end) {
        now_ = end;
        return false;
      }
      now_ = std::max(now_, next->due);
      const auto step = std::move(next->step);
      waiting_.erase(next);
      step();
    }
    return true;
  }

  int paused = 0, vanished = 0;
  std::vector<std::string> lines;
  std::vector<std::u16string> words;  // given and not yet taken

 private:
  struct Step {
    int due;
    std::function<void()> step;
  };
  int now_ = 0;
  std::vector<Step> waiting_;
};

// What an answered record read like when it came.
struct Heard {
  std::string loginId, tag, message;
  std::int32_t errCode = 0;
  std::vector<std::string> first, second, extra;
};

inline std::string textOf(automation::Object& record, std::u16string_view member) {
  return text::toUtf8(automation::toText(automation::get(record, member)));
}

inline std::string textAt(automation::Object& record, std::u16string_view member, std::int32_t index) {
  return text::toUtf8(automation::toText(automation::get(record, member, {automation::byVal(index)})));
}

class FakeCaller : public automation::Object {
 public:
  automation::Value invoke(std::u16string_view member, automation::CallKind,
                           std::span<automation::Argument> arguments) override {
    if (member != u"CallBack" || arguments.size() != 1)
      throw automation::AutomationError(automation::error::unknownName);
    record = automation::toObject(arguments[0].value);
    ++calls;
    if (read) heard.push_back(readRecord());
    if (onCallBack) onCallBack();
    if (failing) throw automation::AutomationError(automation::error::exception);
    return automation::Empty{};
  }

  Heard readRecord() const {
    Heard answer{textOf(*record, u"LoginID"), textOf(*record, u"Tag"), {}, {}, {}, {}, {}};
    try {
      answer.message = textOf(*record, u"Message");
    } catch (const automation::AutomationError&) {
      answer.message = "(no Message)";
    }
    answer.errCode = automation::toLong(automation::get(*record, u"ErrCode"));
    const std::int32_t count = automation::toLong(automation::get(*record, u"Count"));
    for (std::int32_t i = 0; i < count; ++i) {
      answer.first.push_back(textAt(*record, u"FirstData", i));
      answer.second.push_back(textAt(*record, u"SecondData", i));
      answer.extra.push_back(textAt(*record, u"ExtraData", i));
    }
    return answer;
  }

  int calls = 0;
  bool read = true, failing = false;
  automation::ObjectRef record;
  std::vector<Heard> heard;
  std::function<void()> onCallBack;
};

}  // namespace vordane::zulsim

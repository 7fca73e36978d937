// The host that behaves: what it sees of a whole conversation with a simulated exchange of its own. Whatever
// fails of its calls is a std::runtime_error that names the call.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "devhost/core/host.h"
#include "zulsim/core/scenario_parser.h"
#include "zulsim/windows/timers.h"

namespace vordane::hostile {

using Lines = std::vector<std::string>;

class RightHost final : public devhost::Environment {
 public:
  // `note` gets each line of the log.
  explicit RightHost(std::function<void(std::string_view)> note);

  // Creates a layer and registers its exchange; false when the window's life is over or it could not load.
  bool take();
  // The same with the layer that is held.
  bool registerIt();
  void release() { layer_ = nullptr; }
  bool holds() const { return layer_ != nullptr; }
  // Whether nothing keeps a run from beginning. Starts none: the key is no number.
  bool idle();
  void cancel();
  int creationsTriedAgain() const { return creationsTriedAgain_; }
  // Asks for the fault list as a person does and waits for the conversation's end; the calls it got, one line
  // each, identifiers masked. Throws std::runtime_error when the end does not come.
  Lines converse();
  // Calls that nobody asked for since the last conversation.
  Lines takeLines();

  automation::ObjectRef create(std::u16string_view progId) override;
  bool waitUntil(const std::function<bool()>& done, int milliseconds) override;
  void print(std::string_view) override {}
  std::u16string now() override { return u"2026-11-20 10:15"; }
  // The exchange answers when the host has been told of the acceptance, so that the calls have one order.
  void after(int, std::function<void()> answer) override { answers_.push_back(std::move(answer)); }
  void pause(int milliseconds) override {
    waitUntil([] { return false; }, milliseconds);
  }
  bool taken(std::u16string_view) override { return false; }
  void give(std::u16string_view) override {}
  void vanish() override {}
  void log(std::u16string_view) override {}

 private:
  void told(std::string_view line);
  automation::Value call(std::u16string_view member, std::vector<automation::Argument> given = {});

  const std::function<void(std::string_view)> note_;
  const zulsim::ParsedScenario scenario_;
  zulsim::Timers timers_;
  std::vector<std::function<void()>> answers_;
  Lines lines_;
  devhost::Trace trace_;
  std::shared_ptr<devhost::HostState> state_;
  automation::ObjectRef host_, layer_;
  int creationsTriedAgain_ = 0;
};

}  // namespace vordane::hostile

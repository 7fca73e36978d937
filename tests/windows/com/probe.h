// The objects behind the probe's tables.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/member_table.h"
#include "platform/process.h"
#include "probe_library.h"

namespace vordane::test {

class Bag : public automation::TableObject {
 public:
  const automation::ClassTable& table() const override { return bagTable(); }
  std::vector<std::u16string> items;

 protected:
  automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) override;
};

class Probe : public automation::TableObject {
 public:
  // `process` may be null in tests without one; `gone` runs when the probe is let go of.
  explicit Probe(platform::Process* process = nullptr, std::function<void()> gone = {})
      : process_(process), gone_(std::move(gone)) {}
  ~Probe() override {
    if (gone_) gone_();
  }
  const automation::ClassTable& table() const override { return probeTable(); }

  std::u16string text;
  automation::ObjectRef host;

 protected:
  automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) override;

 private:
  automation::Value property(ProbeMember member, bool put, std::span<automation::Argument> arguments);
  automation::Value method(ProbeMember member, std::span<automation::Argument> arguments);

  platform::Process* process_;
  std::function<void()> gone_;
  bool flag_ = false;
  std::int16_t number_ = 0;
  std::uint8_t octet_ = 0;
  std::vector<std::u16string> items_{u"zero", u"one", u"two"};
};

}  // namespace vordane::test

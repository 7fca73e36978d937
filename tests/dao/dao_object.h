// A late-bound object as strict as DAO's own: it takes the members, kinds of call and arguments DAO documents
// and nothing else, and remembers whoever tried.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/automation.h"

namespace vordane::fakes {

using automation::Argument;
using automation::Value;
using Arguments = std::span<Argument>;

// What one engine's objects share.
struct DaoWorld {
  // Calls that no DAO takes, whatever the data: a wrong member, argument count or type.
  std::vector<std::string> misuse;
  std::function<void(const std::string& line)> misused = [](const std::string&) {};  // told each at once
  // Files that another program has exclusively, and how many openings fail before it closes them.
  std::map<std::u16string, int> held;
  // Files that open, but may not be changed.
  std::set<std::u16string> writeProtected;
  // Tables of every file that lie in another one, by their attributes, and the names of saved queries.
  std::map<std::u16string, std::uint32_t> attached;
  std::vector<std::u16string> queries;
  std::vector<std::u16string> statements;  // that reached the engine
};
using DaoWorldRef = std::shared_ptr<DaoWorld>;

// DAO's errors arrive as run-time errors with DAO's number.
[[noreturn]] void raiseDao(int number, std::u16string description = {});

class DaoObject : public automation::Object {
 public:
  explicit DaoObject(DaoWorldRef world, std::string name)
      : world_(std::move(world)), name_(std::move(name)) {}
  Value invoke(std::u16string_view member, automation::CallKind kind, Arguments arguments) override;
  bool hasMember(std::u16string_view member) const override;

 protected:
  using Action = std::function<Value(Arguments)>;
  void method(std::u16string name, std::size_t least, std::size_t most, Action action);
  void property(std::u16string name, Action get, Action put = {});
  // A collection: Count, and Item by position or name.
  void collection(std::function<std::size_t()> count,
                  std::function<automation::ObjectRef(const Value&)> item);

  // The arguments by their types; `fallback` for one that was left out.
  std::u16string text(Arguments arguments, std::size_t position) const;
  std::int32_t number(Arguments arguments, std::size_t position, std::int32_t fallback) const;
  bool flag(Arguments arguments, std::size_t position, bool fallback) const;
  void leftOut(Arguments arguments, std::size_t position) const;

  // Called before every member: what a closed object answers.
  virtual void requireOpen() const {}
  const DaoWorldRef& world() const { return world_; }

 private:
  struct Member {
    bool isMethod = false;
    std::size_t least = 0, most = 0;
    Action get, put;
  };
  void note(const std::string& what) const;
  [[noreturn]] void misuse(std::u16string_view what, std::int32_t code, int position = -1) const;
  const Member& find(std::u16string_view member, automation::CallKind kind) const;

  DaoWorldRef world_;
  std::string name_;
  std::map<std::u16string, Member> members_;
};

}  // namespace vordane::fakes

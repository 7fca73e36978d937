// A host, its PBX access, an exchange server and answered records, all of one mind: each call is answered
// with whatever the generator wants, and on the way calls back, gives objects away or dies.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "hostile/whims.h"
#include "platform/automation.h"

namespace vordane::hostile {

class Peer;

// What all peers of a round share.
class Conspiracy {
 public:
  // `calls` is counted up with each call that is answered.
  Conspiracy(std::uint64_t seed, std::uint64_t& calls) : whims(seed), calls_(calls) {}
  Conspiracy(const Conspiracy&) = delete;
  Conspiracy& operator=(const Conspiracy&) = delete;

  // The answer to a call; `good` is what a good peer would say.
  automation::Value answer(const std::function<automation::Value()>& good,
                           std::span<automation::Argument> arguments);
  automation::ObjectRef anyObject();
  std::shared_ptr<Peer> makePeer();
  // An answered record: mostly a good one with one thing wrong.
  std::shared_ptr<Peer> makeRecord();

  // A peer as it is handed to the add-in: itself, or its face towards another process.
  automation::ObjectRef lend(const std::shared_ptr<Peer>& peer);

  // Runs something against the add-in from inside a call.
  std::function<void()> meddle;
  // Lets a call take its time; null: they all return at once.
  std::function<void()> linger;
  // Makes the face of a peer; null: there is no process between.
  std::function<automation::ObjectRef(const std::shared_ptr<Peer>&)> faceOf;
  // Hears of each call, of its end and of each doing of the peers' own; null: nobody does.
  std::function<void(std::string_view)> note;
  void tell(std::string_view what) const {
    if (note) note(what);
  }
  // The exchange server that hosts lend; null: one of these peers.
  std::function<automation::ObjectRef()> server;

  bool longAnswers = true;      // there may be some of all the entries that can be counted
  std::int32_t others = 7;      // entries of the others that count too many
  bool mortal = true;           // this program may die in a call
  std::size_t oneDeathIn = 20;  // calls in which something happens that leave could be taken in

  Whims whims;
  bool dead = false;                        // the peers' process is gone
  automation::ObjectRef caller;             // the window, as Login lent it
  std::vector<automation::ObjectRef> sent;  // the add-in's own request records
  std::vector<automation::ObjectRef> late;  // answers for later

 private:
  std::uint64_t& calls_;
  int depth_ = 0;
};

// Any of them: it has every member that hosts, accesses, exchange servers and records have.
class Peer : public automation::Object {
 public:
  explicit Peer(Conspiracy& conspiracy) : conspiracy_(conspiracy) {}
  automation::Value invoke(std::u16string_view member, automation::CallKind kind,
                           std::span<automation::Argument> arguments) override;
  bool hasMember(std::u16string_view) const override;

  // Of a record: what a good one says.
  std::int32_t count = 0, errCode = 0;
  std::u16string tag, loginId, message;

 private:
  automation::Value good(std::u16string_view member, std::span<automation::Argument> arguments);
  automation::Value entry(std::u16string_view member);
  Conspiracy& conspiracy_;
  int reads_ = 0;
  std::shared_ptr<Peer> pbx_, access_;
};

}  // namespace vordane::hostile

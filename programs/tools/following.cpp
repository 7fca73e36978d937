#include "following.h"

#include <limits>
#include <utility>

namespace vordane::tools {
namespace {

void addFaults(FeedPiece& piece, FollowMark& mark, std::vector<Event>& events) {
  mark.reached = piece.reached;
  if (piece.faults.empty()) return;
  mark.told = {piece.faults.back().number, identifierOf(piece.faults.back())};
  for (StoredFault& fault : piece.faults) events.emplace_back(std::move(fault));
}

std::string lampsIdentifier(const FollowMark& mark, std::int64_t exchange,
                            const FollowMark::LampsSeen& seen) {
  return mark.source + '-' + std::to_string(exchange) + '-' + std::to_string(seen.sequence) + '-' +
         (seen.lamps.major ? '1' : '0') + (seen.lamps.minor ? '1' : '0');
}

// Those that are not as they were told last.
void addLamps(const FeedPiece& piece, FollowMark& mark, std::vector<Event>& events) {
  std::map<std::int64_t, FollowMark::LampsSeen> stored;
  for (const StoredExchange& exchange : piece.exchanges) {
    const auto before = mark.lamps.find(exchange.id);
    const bool known = before != mark.lamps.end();
    FollowMark::LampsSeen& seen = stored[exchange.id] = known ? before->second : FollowMark::LampsSeen{};
    if (known && seen.lamps == exchange.lamps) continue;
    seen = {exchange.lamps, seen.sequence + 1};
    events.emplace_back(LampsTold{lampsIdentifier(mark, exchange.id, seen), exchange.name, exchange.id,
                                  seen.sequence, exchange.lamps, exchange.received});
  }
  mark.lamps = std::move(stored);  // those of an exchange that was deleted are forgotten
}

}  // namespace

std::string jsonOf(const Event& event) {
  return std::visit([](const auto& one) { return jsonOf(one); }, event);
}

Following::Following(std::string file, Read read, Keep keep, Outlet& outlet)
    : file_(std::move(file)), read_(std::move(read)), keep_(std::move(keep)), outlet_(outlet) {}

void Following::begin(FollowMark mark) {
  mark_ = std::move(mark);
  outlet_.recall(mark_);
  keep();
}

// What was told counts as told in this process, also when that can't be written down.
void Following::keep() {
  kept_ = false;
  keep_(mark_);
  kept_ = true;
}

void Following::beginFromNow(FollowMark mark) {
  mark.reached = read_(std::numeric_limits<std::int64_t>::max(), beforeAllFaults).highest;
  begin(std::move(mark));
}

void Following::requireSameFile(const FeedPiece& piece) const {
  if (mark_.reached != beforeAllFaults && piece.highest < mark_.reached)
    throw ForeignMark(file_ + ": the mark stands behind fault " + std::to_string(mark_.reached) +
                      ", and this file never had more than " + std::to_string(piece.highest) +
                      ". The mark is of another file, or an older copy was brought back. Name another mark");
  if (mark_.told && piece.witness && identifierOf(*piece.witness) != mark_.told->id)
    throw ForeignMark(file_ + ": fault " + std::to_string(mark_.told->number) +
                      " is another one than the mark says. The mark is of another file. Name another mark");
}

bool Following::round() {
  if (!kept_) keep();
  FeedPiece piece = read_(mark_.reached, mark_.told ? mark_.told->number : beforeAllFaults);
  requireSameFile(piece);
  FollowMark next = mark_;
  std::vector<Event> events;
  addFaults(piece, next, events);
  if (!piece.more) addLamps(piece, next, events);
  if (!events.empty()) outlet_.tell(events, next);
  if (next == mark_) return piece.more;
  mark_ = std::move(next);
  keep();
  return piece.more;
}

}  // namespace vordane::tools

#include "hostile/peers.h"

#include <utility>

#include "text/utf8.h"

namespace vordane::hostile {
namespace {

using automation::Argument;
using automation::AutomationError;
using automation::ObjectRef;
using automation::Value;

constexpr int deepestMeddling = 4;
constexpr std::int32_t serverGone = static_cast<std::int32_t>(0x800706BA);

// A call that is answered, in the log.
class Noted {
 public:
  Noted(const Conspiracy& plot, std::u16string_view member) : plot_(plot), member_(member) { tell("> "); }
  ~Noted() { tell("< "); }
  Noted(const Noted&) = delete;
  Noted& operator=(const Noted&) = delete;

 private:
  void tell(const char* sign) const {
    if (plot_.note) plot_.tell(sign + text::toUtf8(member_));
  }
  const Conspiracy& plot_;
  std::u16string_view member_;
};

}  // namespace

std::shared_ptr<Peer> Conspiracy::makePeer() {
  return std::make_shared<Peer>(*this);
}

ObjectRef Conspiracy::lend(const std::shared_ptr<Peer>& peer) {
  return faceOf ? faceOf(peer) : peer;
}

std::shared_ptr<Peer> Conspiracy::makeRecord() {
  const auto record = makePeer();
  record->count = whims.once(3) ? whims.number() : static_cast<std::int32_t>(4 * whims.below(3));
  // A long answer is a long wait: few of them, and only their beginning is hostile.
  if (record->count > 100 && !(longAnswers && whims.once(40))) record->count = others;
  record->errCode = whims.once(3) ? whims.number() : 0;
  record->tag = whims.once(4) ? whims.text() : whims.oneOf<const char16_t*>({u"10", u"11", u"12"});
  record->loginId = whims.once(4) ? whims.text() : u"L1";
  record->message = whims.text();
  return record;
}

ObjectRef Conspiracy::anyObject() {
  switch (whims.below(6)) {
    case 0:
      return nullptr;
    case 1:
      return caller;
    case 2:
      return sent.empty() ? nullptr : sent[whims.below(sent.size())];
    case 3:
      return lend(makeRecord());
    default:
      return lend(makePeer());
  }
}

Value Conspiracy::answer(const std::function<Value()>& good, std::span<Argument> arguments) {
  ++calls_;
  if (dead) throw AutomationError(serverGone);
  if (linger && whims.once(30)) linger();
  if (whims.once(6) && meddle && depth_ < deepestMeddling) {
    ++depth_;
    meddle();
    --depth_;
    if (dead) throw AutomationError(serverGone);
  }
  Value rightAnswer = good();
  for (Argument& argument : arguments)
    if (whims.once(8)) argument.value = whims.once(3) ? Value(anyObject()) : whims.value();
  switch (whims.below(10)) {
    case 0:
      whims.fail();
    case 1:
      return whims.value();
    case 2:
      return whims.once(4) ? Value(anyObject()) : whims.value();
    default:
      return rightAnswer;
  }
}

bool Peer::hasMember(std::u16string_view) const {
  return !conspiracy_.whims.once(50);
}

Value Peer::invoke(std::u16string_view member, automation::CallKind kind, std::span<Argument> arguments) {
  const bool put = automation::isPut(kind);
  constexpr int hostileReads = 400;
  if (++reads_ > hostileReads && count > 100) return entry(member);
  const Noted noted(conspiracy_, member);
  return conspiracy_.answer([&]() -> Value { return put ? Value() : good(member, arguments); }, arguments);
}

// What a good peer would say; what is lent on the way is kept, for use at any time.
Value Peer::good(std::u16string_view member, std::span<Argument> arguments) {
  const auto object = [&](std::size_t i) {
    const auto* given = arguments.size() > i ? std::get_if<ObjectRef>(&arguments[i].value) : nullptr;
    return given == nullptr ? ObjectRef{} : *given;
  };
  if (member == u"oPBX" && conspiracy_.server) return conspiracy_.server();
  if (member == u"oPBX") return conspiracy_.lend(pbx_ ? pbx_ : pbx_ = conspiracy_.makePeer());
  if (member == u"oZUL") return conspiracy_.lend(access_ ? access_ : access_ = conspiracy_.makePeer());
  if (member == u"Login") {
    if (const ObjectRef lent = object(1)) conspiracy_.caller = lent;
    return std::u16string(u"L1");
  }
  if (member == u"SendRequest") {
    if (const ObjectRef lent = object(0)) conspiracy_.sent.push_back(lent);
    return std::u16string(u"ACCEPTED");
  }
  if (member == u"getsysinfo") return static_cast<std::int16_t>(conspiracy_.whims.below(16));
  if (member == u"GetMPVersion") return std::u16string(u"SC-1000 N1");
  if (member == u"GetComData" && arguments.size() == 3) arguments[2].value = conspiracy_.whims.text();
  if (member == u"Count") return count;
  if (member == u"ErrCode") return errCode;
  if (member == u"Tag") return tag;
  if (member == u"LoginID") return loginId;
  if (member == u"Message") return message;
  return entry(member);
}

Value Peer::entry(std::u16string_view member) {
  Whims& whims = conspiracy_.whims;
  if (member == u"CMD") return std::u16string(u"LEA0");
  if (member == u"FirstData")
    return std::u16string(
        whims.oneOf<const char16_t*>({u"15 MJ MP000", u"04 MN MP001", u"00", u"", u"48 MJ AB"}));
  if (member == u"SecondData")
    return std::u16string(whims.oneOf<const char16_t*>({u"10", u"01", u"00", u"0A 1B 2C"}));
  if (member == u"ExtraData") return std::u16string(whims.oneOf<const char16_t*>({u"OK", u"ok", u"NG", u""}));
  return std::u16string{};
}

}  // namespace vordane::hostile

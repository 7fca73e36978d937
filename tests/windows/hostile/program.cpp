#include "program.h"

#include <algorithm>
#include <climits>
#include <functional>

#include "desk.h"
#include "face.h"
#include "pbx/answer_reading.h"
#include "platform/command_line.h"
#include "platform/windows/com/counted.h"
#include "platform/windows/com/errors.h"
#include "platform/windows/com/objects.h"
#include "platform/windows/com/values.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"

namespace vordane::hostile {
namespace {

using automation::AutomationError;
using automation::Member;
using automation::MemberKind;
using automation::ObjectRef;
using automation::Parameter;
using automation::Type;
using automation::Value;

constexpr Parameter beginning[] = {{u"Seed", Type::longInteger}, {u"Endings", Type::boolean}};
constexpr Parameter counted[] = {{u"Count", Type::longInteger}};

enum Order : std::size_t { begin, steps, answer, late, rest, letGo, calls, problem, end };
constexpr Member orders[] = {
    {u"Begin", 1, MemberKind::method, Type::none, beginning},
    {u"Steps", 2, MemberKind::method, Type::none, counted},
    {u"Answer", 3, MemberKind::method, Type::none},
    {u"AnswerLate", 4, MemberKind::method, Type::none},
    {u"Rest", 5, MemberKind::method, Type::none},
    {u"LetGo", 6, MemberKind::method, Type::none},
    {u"Calls", 7, MemberKind::readOnly, Type::longInteger},
    {u"Problem", 8, MemberKind::readOnly, Type::text},
    {u"End", 9, MemberKind::method, Type::none},
};
constexpr automation::ClassTable hostTable{u"cHost",
                                           u"VordaneHostile.cHost",
                                           u"A host that misbehaves.",
                                           "{6A1F2C90-3B5D-4E7A-9C11-2D8E4F6A7B31}",
                                           {},
                                           orders};
constexpr automation::ClassTable serverTable{u"cServer",
                                             u"VordaneHostile.cServer",
                                             u"An exchange server that misbehaves.",
                                             "{6A1F2C91-3B5D-4E7A-9C11-2D8E4F6A7B31}",
                                             {},
                                             orders};
constexpr automation::ClassTable pbxTable{
    u"cPBXOLE", u"CalderinProj30666.cPBXOLE", u"What it lends.", "{6A1F2C92-3B5D-4E7A-9C11-2D8E4F6A7B31}", {},
    {}};

class DirectorsObject : public automation::TableObject {
 public:
  DirectorsObject(Role role, Program& program) : role_(role), program_(program) {}
  const automation::ClassTable& table() const override { return directorsTable(role_); }

 protected:
  Value invokeMember(std::size_t member, automation::CallKind,
                     std::span<automation::Argument> given) override {
    switch (member) {
      case begin:
        program_.begin(std::get<std::int32_t>(given[0].value), std::get<bool>(given[1].value));
        break;
      case steps:
        program_.steps(std::get<std::int32_t>(given[0].value));
        break;
      case answer:
        program_.answer();
        break;
      case late:
        program_.answerLate();
        break;
      case rest:
        program_.rest();
        break;
      case letGo:
        program_.letGo();
        break;
      case calls:
        return program_.calls();
      case problem:
        return program_.problem();
      default:
        PostQuitMessage(0);
    }
    return {};
  }

 private:
  Role role_;
  Program& program_;
};

class Factory final : public com::Counted<IClassFactory> {
 public:
  explicit Factory(std::function<ObjectRef()> make) : make_(std::move(make)) {}
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** out) override {
    return com::answerPlain([&] {
      const HRESULT result = com::exportObject(make_())->QueryInterface(iid, out);
      if (FAILED(result)) throw com::Refusal{result};
    });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  std::function<ObjectRef()> make_;
};

// Serves one creation: the class of a program that is killed in the middle must not stay behind, and not
// every system notices the death.
DWORD serveOnce(const automation::ClassTable& table, std::function<ObjectRef()> make) {
  const com::ComPtr<IClassFactory> factory(new Factory(std::move(make)));
  DWORD registration = 0;
  CoRegisterClassObject(com::toGuid(table.clsid), factory.get(), CLSCTX_LOCAL_SERVER, REGCLS_SINGLEUSE,
                        &registration);
  return registration;
}

void set(const wchar_t* event) {
  const com::Handle opened(OpenEventW(EVENT_MODIFY_STATE, FALSE, event));
  SetEvent(opened.get());
}

registration::Class registered(const automation::ClassTable& table) {
  return {
      std::u16string(table.progId), text::fromUtf8(table.clsid), std::u16string(table.description), {}, {}};
}

}  // namespace

const wchar_t* hangingEvent(Role role) {
  return role == Role::host ? L"VordaneHostileHostHangs" : L"VordaneHostileExchangeHangs";
}

const automation::ClassTable& directorsTable(Role role) {
  return role == Role::host ? hostTable : serverTable;
}
const automation::ClassTable& exchangeTable() {
  return pbxTable;
}

Program::Program(Role role) : role_(role) {}

// --- orders

void Program::begin(std::int32_t seed, bool endings) {
  const com::Handle mortal(OpenEventW(SYNCHRONIZE, FALSE, mortalEvent));
  endings = endings && WaitForSingleObject(mortal.get(), 0) == WAIT_OBJECT_0;
  // Both programs have the same seed and must not do the same.
  plots_.push_back(std::make_unique<Conspiracy>(
      2 * static_cast<std::uint64_t>(seed) + (role_ == Role::host ? 0 : 1), calls_));
  Conspiracy& plot = *plots_.back();
  plot.longAnswers = false;
  plot.others = 100;
  plot.oneDeathIn = 6;
  plot.mortal = endings && (role_ == Role::exchange || plot.whims.once(2));
  plot.faceOf = [&plot](const std::shared_ptr<Peer>& peer) { return makeFace(plot, peer); };
  plot.linger = [this] { linger(); };
  auto next = std::make_unique<Attack>(plot, *this);
  if (attack_) next->layers = std::move(attack_->layers);
  attack_ = std::move(next);
  attack_->endings = endings;
  attack_->faithful = plot.mortal;
  if (plot.mortal) attack_->keepLayers(0);
  server_ = nullptr;
  answered_ = 0;
  active_ = true;
  if (role_ == Role::exchange) {
    attack_->lieInWait();
    offerExchange();
    return byItself();
  }
  if (plot.whims.once(3)) plot.server = [this] { return lentServer(); };
  attack_->begin();
}

void Program::steps(std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) {
    attack_->step();
    if (takeRequest()) attack_->answer();
  }
}

// Whether there is one that was sent and not dealt with yet.
bool Program::takeRequest() {
  if (answered_ >= plots_.back()->sent.size()) return false;
  ++answered_;
  return true;
}

// A log-in may have met a peer of an earlier round.
void Program::findTheWindow() {
  ObjectRef& window = plots_.back()->caller;
  for (auto plot = plots_.rbegin(); plot != plots_.rend() && !window; ++plot) window = (*plot)->caller;
}

void Program::answer() {
  findTheWindow();
  attack_->answer();
}

void Program::answerLate() {
  findTheWindow();
  attack_->answerLate();
}

void Program::rest() {
  active_ = false;
  if (!attack_) return;
  attack_->rest();
  plots_.back()->linger = nullptr;
}

void Program::letGo() {
  if (!attack_) return;
  attack_->keepLayers(0);
  for (const auto& plot : plots_) {
    plot->caller = nullptr;
    plot->sent.clear();
    plot->late.clear();
  }
}

// The same one as long as it lives, or dead for a while.
ObjectRef Program::lentServer() {
  Whims& whims = plots_.back()->whims;
  try {
    if (!server_ || whims.once(20)) server_ = windows::ComObjectCreator().create(exchangeTable().progId);
  } catch (const AutomationError&) {
  }
  return server_;
}

ObjectRef Program::exchangeServer() {
  if (plots_.empty()) begin(1, true);  // one that was started again behind its death
  if (!server_) server_ = plots_.back()->lend(plots_.back()->makePeer());
  return server_;
}

void Program::offerExchange() {
  if (offered_ != 0) CoRevokeClassObject(offered_);
  offered_ = serveOnce(exchangeTable(), [this] { return exchangeServer(); });
}

// An exchange server answers by itself: several times for each request that it was sent, whatever it is good
// for.
void Program::byItself() {
  timers_.after(40, [this] {
    if (!active_) return;
    byItself();
    if (acting_) return;
    if (takeRequest()) tries_ = 8;
    if (tries_ == 0) return;
    --tries_;
    acting_ = true;
    attack_->step();
    acting_ = false;
  });
}

// --- calls that take their time

void Program::linger() {
  Whims& whims = plots_.back()->whims;
  if (whims.once(12) && plots_.back()->mortal && attack_->isWatched()) hang();
  com::serveMessagesUntil([] { return false; }, static_cast<int>(1 + whims.below(60)));
}

// Deaf, or serving other calls all the while.
void Program::hang() {
  const bool deaf = plots_.back()->whims.once(2);
  set(hangingEvent(role_));
  for (;;) {
    if (deaf)
      Sleep(INFINITE);
    else
      com::serveMessagesUntil([] { return false; }, INT_MAX);
  }
}

// --- the scene

ObjectRef Program::createLayer() {
  return windows::ComObjectCreator().create(u"Vordane10013.cOLELayer");
}

bool Program::tick() {
  com::serveMessagesUntil([] { return false; }, static_cast<int>(1 + plots_.back()->whims.below(12)));
  return true;
}

void Program::die() {
  set(diedEvent);
  TerminateProcess(GetCurrentProcess(), diedInACall);
}

void Program::press(int action) {
  pressButton(addInWindow(), static_cast<Action>(action));
}
void Program::pressKey(int code) {
  hostile::pressKey(addInWindow(), code);
}
void Program::clickHeading(int column) {
  hostile::clickHeading(addInWindow(), column);
}
void Program::chooseExchange(std::uint64_t any) {
  hostile::chooseExchange(addInWindow(), any);
}
void Program::closeWindow() {
  askToClose(addInWindow());
}
// The director answers them.
void Program::answerBoxesWith(int) {}

void Program::makesAJob() {
  set(jobEvent);
}

void Program::wrong(const std::string& what) {
  if (problem_.empty()) problem_ = text::fromUtf8(what);
}

bool Program::isGone(std::int32_t code) {
  return pbx::isServerGone(code);
}

ObjectRef createPatiently(std::u16string_view progId, int* triedAgain) {
  constexpr int tries = 10;
  for (int i = 1;; ++i) {
    try {
      return windows::ComObjectCreator().create(progId);
    } catch (const AutomationError& failure) {
      if (i == tries || !pbx::isServerGone(failure.code())) throw;
      if (triedAgain != nullptr) ++*triedAgain;
      com::serveMessagesUntil([] { return false; }, 100 * i);
    }
  }
}

int runProgram(Role role) {
  const platform::CommandLine line =
      platform::parseCommandLine(platform::withoutProgramName(com::fromWide(GetCommandLineW())));
  registration::Server server{windows::executablePath(), {registered(directorsTable(role))}, std::nullopt};
  if (role == Role::exchange) server.classes.push_back(registered(exchangeTable()));
  if (const auto asked = windows::registerAsAsked(line, server)) return *asked;
  com::Apartment apartment;
  Program program(role);
  serveOnce(directorsTable(role),
            [&]() -> ObjectRef { return std::make_shared<DirectorsObject>(role, program); });
  if (role == Role::exchange) program.offerExchange();
  return com::runMessageLoop();
}

}  // namespace vordane::hostile

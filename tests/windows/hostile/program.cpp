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

constexpr int betweenLooks = 15;  // milliseconds, at the board

using automation::AutomationError;
using automation::Member;
using automation::MemberKind;
using automation::ObjectRef;
using automation::Parameter;
using automation::Type;
using automation::Value;

constexpr Parameter counted[] = {{u"Count", Type::longInteger}};

enum Order : std::size_t { begin, steps, answer, late, letGo, end };
constexpr Member orders[] = {
    {u"Begin", 1, MemberKind::method, Type::none},  {u"Steps", 2, MemberKind::method, Type::none, counted},
    {u"Answer", 3, MemberKind::method, Type::none}, {u"AnswerLate", 4, MemberKind::method, Type::none},
    {u"LetGo", 5, MemberKind::method, Type::none},  {u"End", 6, MemberKind::method, Type::none},
};
constexpr automation::ClassTable hostTable{u"cHost",
                                           u"VordaneHostile.cHost",
                                           u"A host that misbehaves.",
                                           "{6A1F2C90-3B5D-4E7A-9C11-2D8E4F6A7B31}",
                                           {},
                                           orders};
constexpr automation::ClassTable pbxTable{
    u"cPBXOLE", u"CalderinProj30666.cPBXOLE", u"What it lends.", "{6A1F2C92-3B5D-4E7A-9C11-2D8E4F6A7B31}", {},
    {}};

class DirectorsObject : public automation::TableObject {
 public:
  explicit DirectorsObject(Program& program) : program_(program) {}
  const automation::ClassTable& table() const override { return directorsTable(); }

 protected:
  Value invokeMember(std::size_t member, automation::CallKind,
                     std::span<automation::Argument> given) override {
    program_.hearsOf(text::toUtf8(orders[member].name));
    switch (member) {
      case begin:
        program_.begin();
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
      case letGo:
        program_.letGo();
        break;
      default:
        PostQuitMessage(0);
    }
    return {};
  }

 private:
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

// One more doing of a program's own, as long as it lasts.
class Doing {
 public:
  explicit Doing(Seat& seat) : seat_(seat) { ++seat_.acts; }
  ~Doing() { --seat_.acts; }
  Doing(const Doing&) = delete;
  Doing& operator=(const Doing&) = delete;

 private:
  Seat& seat_;
};

char letterOf(Role role) {
  return role == Role::host ? 'H' : 'X';
}

registration::Class registered(const automation::ClassTable& table) {
  return {
      std::u16string(table.progId), text::fromUtf8(table.clsid), std::u16string(table.description), {}, {}};
}

}  // namespace

const automation::ClassTable& directorsTable() {
  return hostTable;
}
const automation::ClassTable& exchangeTable() {
  return pbxTable;
}

Program::Program(Role role, const Board& board) : role_(role), board_(board), seat_(board.sit(role)) {}

// --- rounds

void Program::plot(std::uint64_t seed) {
  if (attack_) attack_->rest();
  plots_.push_back(std::make_unique<Conspiracy>(seed, seat_.calls));
  Conspiracy& plot = *plots_.back();
  plot.note = [this](std::string_view what) { board_.note(letterOf(role_), what); };
  plot.longAnswers = false;
  plot.others = 100;
  plot.oneDeathIn = 6;
  const bool mortal = board_->endings && board_->mortal;
  plot.mortal = mortal && (role_ == Role::exchange || plot.whims.once(2));
  plot.faceOf = [&plot](const std::shared_ptr<Peer>& peer) { return makeFace(plot, peer); };
  plot.linger = [this] { whilePlaying([this] { linger(); }); };
  auto next = std::make_unique<Attack>(plot, *this);
  if (attack_) next->layers = std::move(attack_->layers);
  attack_ = std::move(next);
  attack_->endings = board_->endings;
  attack_->faithful = plot.mortal;
  attack_->lieInWait();
  plot.meddle = [this, meddle = std::move(plot.meddle)] { whilePlaying(meddle); };
  server_ = nullptr;
  answered_ = 0;
}

// The director lets nobody begin anything, then waits until whatever has begun is over.
void Program::whilePlaying(const std::function<void()>& deed) {
  const Doing doing(seat_);
  if (board_->playing) deed();
}

// Programs of one round must not do the same.
void Program::begin() {
  plot(2 * static_cast<std::uint64_t>(board_->seed.load()));
  Conspiracy& plot = *plots_.back();
  if (plot.mortal) attack_->keepLayers(0);
  if (plot.whims.once(3)) plot.server = [this] { return lentServer(); };
  const Doing doing(seat_);
  attack_->begin();
}

void Program::steps(std::int32_t count) {
  const Doing doing(seat_);
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

void Program::hearsOf(std::string_view order) const {
  board_.note(letterOf(role_), "order: " + std::string(order));
}

void Program::answer() {
  if (!attack_) return;
  const Doing doing(seat_);
  findTheWindow();
  attack_->answer();
}

void Program::answerLate() {
  if (!attack_) return;
  const Doing doing(seat_);
  findTheWindow();
  attack_->answerLate();
}

void Program::letGo() {
  if (!attack_) return;
  const Doing doing(seat_);
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
    if (!server_ || whims.once(40)) server_ = windows::ComObjectCreator().create(exchangeTable().progId);
  } catch (const AutomationError&) {
  }
  return server_;
}

// --- an exchange server

ObjectRef Program::exchangeServer() {
  if (plots_.empty())
    plot(2 * static_cast<std::uint64_t>(board_->seed.load()) + 1 + 1'000'003 * board_->exchanges++);
  if (!server_) server_ = plots_.back()->lend(plots_.back()->makePeer());
  return server_;
}

void Program::offerExchange() {
  offered_ = serveOnce(exchangeTable(), [this] { return exchangeServer(); });
}

void Program::attend() {
  timers_.after(betweenLooks, [this] {
    attend();
    look();
  });
}

void Program::look() {
  if (hears_) return;
  hears_ = true;
  if (seat_.heard != board_->wishes) hear();
  actByItself();
  hears_ = false;
}

// What has been wished is heard of when it is done.
void Program::hear() {
  const std::int32_t number = board_->wishes;
  const Wish wish = board_->wish;
  if (wish == Wish::answer) answer();
  if (wish == Wish::answerLate) answerLate();
  if (wish == Wish::letGo || wish == Wish::leave) letGo();
  if (wish == Wish::leave) PostQuitMessage(0);
  seat_.heard = number;
}

// Several times for each request that it was sent, whatever it is good for.
void Program::actByItself() {
  if (!attack_) return;
  if (takeRequest()) tries_ = 8;
  if (tries_ == 0) return;
  --tries_;
  whilePlaying([this] { attack_->step(); });
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
  board_.note(letterOf(role_), deaf ? "hangs, deaf" : "hangs");
  seat_.hangs = true;
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
  board_.note(letterOf(role_), "dies");
  ++board_->deaths[static_cast<std::size_t>(role_)];
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
  board_->jobMade = true;
}

void Program::wrong(const std::string& what) {
  board_.note(letterOf(role_), "WRONG: " + what);
  board_.setWrong(what);
}

// Wine takes an interface off its list with the last object that has it: a caller who still holds one hears
// then that the interface is unknown, where Windows says that the object is disconnected.
bool Program::isGone(std::int32_t code) {
  return pbx::isServerGone(code) || code == HRESULT_FROM_WIN32(RPC_S_UNKNOWN_IF);
}

// How a creation ends that meets a process on its way out. Wine 10 once said no more than "failure" then.
bool mayBeOnItsWayOut(std::int32_t code) {
  return pbx::isServerGone(code) || code == E_FAIL;
}

ObjectRef createPatiently(std::u16string_view progId, int* triedAgain) {
  constexpr int tries = 10;
  for (int i = 1;; ++i) {
    try {
      return windows::ComObjectCreator().create(progId);
    } catch (const AutomationError& failure) {
      if (i == tries || !mayBeOnItsWayOut(failure.code())) throw;
      if (triedAgain != nullptr) ++*triedAgain;
      com::serveMessagesUntil([] { return false; }, 100 * i);
    }
  }
}

int runProgram(Role role) {
  const platform::CommandLine line =
      platform::parseCommandLine(platform::withoutProgramName(com::fromWide(GetCommandLineW())));
  const automation::ClassTable& offered = role == Role::host ? directorsTable() : exchangeTable();
  const registration::Server server{windows::executablePath(), {registered(offered)}, std::nullopt};
  if (const auto asked = windows::registerAsAsked(line, server)) return *asked;
  com::Apartment apartment;
  const Board board;
  Program program(role, board);
  if (role == Role::host)
    serveOnce(offered, [&]() -> ObjectRef { return std::make_shared<DirectorsObject>(program); });
  else
    program.offerExchange();
  if (role == Role::exchange) program.attend();
  return com::runMessageLoop();
}

}  // namespace vordane::hostile

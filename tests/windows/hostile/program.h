// The two hostile programs, a host and an exchange server, each in a process of its own. A director orders
// them about through one object each; in between they do to the add-in what their generator says.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hostile/attack.h"
#include "platform/member_table.h"
#include "platform/registration.h"
#include "platform/windows/com/apartment.h"
#include "zulsim/windows/timers.h"

namespace vordane::hostile {

enum class Role : std::uint8_t { host, exchange };

// How a program ends that is meant to: by its own hand, or by the director's because it hangs.
inline constexpr UINT diedInACall = 42;
inline constexpr UINT killedWhileItHung = 43;

// Set while a program hangs in a call that it will never answer.
const wchar_t* hangingEvent(Role role);
// Set from the first creation of a job on; also by a host that has died since.
inline constexpr const wchar_t* jobEvent = L"VordaneHostileJob";
// Set as long as the programs may die and hang; they look when a round begins. An exchange server that was
// created beside the one that the director knows looks too.
inline constexpr const wchar_t* mortalEvent = L"VordaneHostileMortal";
// Set by one that dies in a call.
inline constexpr const wchar_t* diedEvent = L"VordaneHostileDied";

// The object that takes the director's orders.
const automation::ClassTable& directorsTable(Role role);
// What the add-in and the host create: the exchange server.
const automation::ClassTable& exchangeTable();

class Program : public Scene {
 public:
  explicit Program(Role role);

  // --- orders
  // New peers, whose generator begins with `seed`; a host creates a layer and registers. `endings`: the
  // window's own end may be brought about, and this program may die or hang.
  void begin(std::int32_t seed, bool endings);
  void steps(std::int32_t count);
  void answer();
  void answerLate();
  void rest();
  void letGo();
  std::int32_t calls() const { return static_cast<std::int32_t>(calls_); }
  const std::u16string& problem() const { return problem_; }

  // Lets the exchange server be created, once; a further creation starts a further program.
  void offerExchange();

  // --- the scene
  automation::ObjectRef createLayer() override;
  bool over() override { return false; }  // whoever creates a layer then gets another process
  bool tick() override;
  void die() override;
  void press(int action) override;
  void pressKey(int code) override;
  void clickHeading(int column) override;
  void chooseExchange(std::uint64_t any) override;
  void closeWindow() override;
  void answerBoxesWith(int answer) override;
  void makesAJob() override;
  void wrong(const std::string& what) override;
  bool isGone(std::int32_t code) override;

 private:
  automation::ObjectRef exchangeServer();
  automation::ObjectRef lentServer();
  void linger();
  [[noreturn]] void hang();
  void byItself();
  void findTheWindow();
  bool takeRequest();

  const Role role_;
  std::uint64_t calls_ = 0;
  std::vector<std::unique_ptr<Conspiracy>> plots_;  // the add-in may hold peers of earlier ones
  std::unique_ptr<Attack> attack_;
  automation::ObjectRef server_;
  std::size_t answered_ = 0;  // requests that this one has dealt with
  int tries_ = 0;
  DWORD offered_ = 0;
  bool active_ = false, acting_ = false;
  std::u16string problem_;
  zulsim::Timers timers_;
};

// Creates an object; tries again when the process that offers the class ends in the middle, or has been
// killed and the system has not noticed. `triedAgain` counts that. Throws AutomationError.
automation::ObjectRef createPatiently(std::u16string_view progId, int* triedAgain = nullptr);

// Runs one of them: registers it, or serves until the director says that it is over.
int runProgram(Role role);

}  // namespace vordane::hostile

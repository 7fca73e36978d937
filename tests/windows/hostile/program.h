// The two hostile programs, a host and an exchange server. The host is one process, which a director orders
// about through an object; of exchange servers there are as many as are created, and they look on the board
// what is wanted of them. In between they do to the add-in what their generator says, as long as the board
// lets them.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "board.h"
#include "hostile/attack.h"
#include "platform/member_table.h"
#include "platform/registration.h"
#include "platform/windows/com/apartment.h"
#include "zulsim/windows/timers.h"

namespace vordane::hostile {

// The host's object that takes the director's orders.
const automation::ClassTable& directorsTable();
// What the add-in and the host create: the exchange server.
const automation::ClassTable& exchangeTable();

class Program : public Scene {
 public:
  Program(Role role, const Board& board);

  // --- orders to a host
  void hearsOf(std::string_view order) const;  // for the log
  // New peers, as the board says; creates a layer and registers.
  void begin();
  void steps(std::int32_t count);
  void answer();
  void answerLate();
  void letGo();

  // An exchange server's life: offered once, since of every further creation a further program is started; it
  // looks at the board until the wish to leave comes.
  void offerExchange();
  void attend();

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
  void plot(std::uint64_t seed);
  automation::ObjectRef exchangeServer();
  automation::ObjectRef lentServer();
  void whilePlaying(const std::function<void()>& deed);
  void linger();
  [[noreturn]] void hang();
  void look();
  void hear();
  void actByItself();
  void findTheWindow();
  bool takeRequest();

  const Role role_;
  const Board& board_;
  Seat& seat_;
  std::vector<std::unique_ptr<Conspiracy>> plots_;  // the add-in may hold peers of earlier ones
  std::unique_ptr<Attack> attack_;
  automation::ObjectRef server_;
  std::size_t answered_ = 0;  // requests that this one has dealt with
  int tries_ = 0;
  DWORD offered_ = 0;
  bool hears_ = false;
  zulsim::Timers timers_;
};

// Creates an object; tries again when the process that offers the class ends in the middle, or has been
// killed and the system has not noticed. `triedAgain` counts that. Throws AutomationError.
automation::ObjectRef createPatiently(std::u16string_view progId, int* triedAgain = nullptr);

// Runs one of them: registers it, or serves until the director says that it is over.
int runProgram(Role role);

}  // namespace vordane::hostile

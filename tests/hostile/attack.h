// What hostile programs do to the add-in by themselves: call its layers, its window and its call-back, at
// any time and from inside their own calls, give everything away, die.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostile/peers.h"

namespace vordane::hostile {

// What a hostile program reaches besides what it was lent, and what a person does beside it.
class Scene {
 public:
  virtual ~Scene() = default;

  virtual automation::ObjectRef createLayer() = 0;  // throws AutomationError
  virtual bool over() = 0;                          // the add-in's process has ended
  // Lets the add-in's timer come; false when it does not run, as far as that can be told.
  virtual bool tick() = 0;
  // Ends this program in the middle of a call; returns where programs are played by objects.
  virtual void die() = 0;

  // A person's doings.
  virtual void press(int action) = 0;
  virtual void pressKey(int code) = 0;
  virtual void clickHeading(int column) = 0;
  virtual void chooseExchange(std::uint64_t any) = 0;
  virtual void closeWindow() = 0;
  virtual void answerBoxesWith(int answer) = 0;

  // CreateSchedule is about to be called: from now on a person may be defining a job.
  virtual void makesAJob() {}
  // An answer that no host or server may get, or an error where there must be none.
  virtual void wrong(const std::string& what) = 0;
  // Whether an error only says that the add-in's process is gone.
  virtual bool isGone(std::int32_t) { return false; }
};

class Attack {
 public:
  Attack(Conspiracy& plot, Scene& scene) : plot_(plot), scene_(scene) {}
  Attack(const Attack&) = delete;
  Attack& operator=(const Attack&) = delete;

  // As a hostile host: creates a layer and registers; every call that comes may lead to further doings.
  void begin();
  // As a hostile exchange server, which has no layers: the same but for the beginning.
  void lieInWait();
  // One thing that comes from outside.
  void step() { outside(false); }
  // One answer, if a request was sent.
  void answer();
  // Answers that come long after: nobody waits for them.
  void answerLate(automation::Object& window);
  void answerLate();
  // Does nothing by itself any more.
  void rest() { plot_.meddle = nullptr; }
  // Lets go of all layers but `count`.
  void keepLayers(std::size_t count);
  // While a box stands, as long as this attack lasts.
  void whileABoxStands();
  // Whether the add-in would notice this program's death: not while a layer is made and not yet registered.
  bool isWatched() const { return unregistered_ == 0; }

  bool endings = true;    // the window's own end may be asked for: jobs, their end, the title bar
  bool faithful = false;  // each layer is registered with this host alone, whose death can be noticed by it
  std::vector<automation::ObjectRef> layers;
  automation::ObjectRef host;

 private:
  void outside(bool inside);
  automation::ObjectRef someLayer();
  void addLayer();
  automation::ObjectRef someHost();
  void callLayer();
  void runSchedule(automation::Object& layer);
  void callWindow();
  void callBack();
  void answerWith(automation::Object& window, const automation::ObjectRef& record);
  void person();
  void leave();

  Conspiracy& plot_;
  Scene& scene_;
  bool hasLayers_ = false;
  int unregistered_ = 0;
};

}  // namespace vordane::hostile

// When the lamps call for a person who may be looking elsewhere, and how: a lamp of the exchange shown that
// goes from clear to alarm. What was in alarm before the exchange was shown is no news. Pure; one thread.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vordane::attention {

enum class Lamp { major, minor };

// What is drawn over the task bar button: the worst lamp that is lit.
enum class Overlay { none, minor, major };

// To a screen reader: where the lamp stands, when its user is in the window, or as an alert, which it reads
// from behind other windows too.
enum class Announcement { none, inPlace, alert };

// What stands around the lamps when the person would be called.
struct Around {
  bool attended = false;  // a person works with the window: no job is made or run
  bool seen = false;      // the window is shown, or has its button on the task bar
  bool inFront = false;
  bool soundWanted = false;
};

// What is to be done now. `sound` and `announced` name the worst lamp that is news.
struct Call {
  bool flash = false;
  Announcement announcement = Announcement::none;
  std::optional<Lamp> announced, sound;
  Overlay overlay = Overlay::none;
  bool operator==(const Call&) const = default;
};

class Attention {
 public:
  // A lamp of that exchange is shown as lit or clear from now on.
  void shown(std::u16string_view exchange, Lamp lamp, bool lit);
  // What the lamps shown since the last call ask for. What nobody could be told then is not told later: the
  // lamps themselves say it.
  Call take(const Around& around);

 private:
  struct State {
    std::optional<bool> lit;  // unknown until the exchange's lamp is shown
    bool news = false;
  };
  State& of(Lamp lamp) { return lamps_[lamp == Lamp::major ? 0 : 1]; }
  bool lit(Lamp lamp) { return of(lamp).lit.value_or(false); }

  std::u16string exchange_;
  std::array<State, 2> lamps_;
};

}  // namespace vordane::attention

// What is registered on a workstation and in its settings, as far as the tests write there: read before, put
// back behind. The registry is handed in; texts are UTF-16 as it has them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::kit {

struct RegistryValue {
  std::uint32_t type = 0;
  std::vector<std::uint8_t> data{};
  bool operator==(const RegistryValue&) const = default;
};

struct RegistryTree {
  std::string rights{};  // who may do what with the key, in Windows' own notation; empty: not known
  std::map<std::u16string, RegistryValue> values{};
  std::map<std::u16string, RegistryTree> keys{};
  // Rights are no part of it: a key that is still there has kept its own.
  bool operator==(const RegistryTree& other) const { return values == other.values && keys == other.keys; }
};

enum class Hive : std::uint8_t { machine, user };
enum class View : std::uint8_t { words64, words32 };

struct RegistryPlace {
  Hive hive = Hive::machine;
  View view = View::words64;
  std::u16string path{};
  bool operator==(const RegistryPlace&) const = default;
};

// "HKLM\Software\... (64-bit)"
std::string nameOf(const RegistryPlace& place);

// What goes wrong in the registry is an exception: std::runtime_error with the place and the reason.
class Registry {
 public:
  virtual ~Registry() = default;
  virtual std::optional<RegistryTree> read(const RegistryPlace& place) = 0;  // nothing: no such key
  virtual bool exists(const RegistryPlace& place) = 0;
  // Throws when the key could not be removed and made again.
  virtual void demandRights(const RegistryPlace& place) = 0;
  virtual void makeKey(const RegistryPlace& place, const std::string& rights) = 0;
  virtual void removeKey(const RegistryPlace& place) = 0;  // with all that is in it
  virtual void write(const RegistryPlace& place, const std::u16string& name, const RegistryValue& value) = 0;
  virtual void remove(const RegistryPlace& place, const std::u16string& name) = 0;
};

struct SavedKey {
  RegistryPlace place{};
  std::optional<RegistryTree> tree{};  // nothing: the key was not there
  bool above = false;  // a key above a place, which was not there either: others may use it by now
  bool operator==(const SavedKey&) const = default;
};
using SavedState = std::vector<SavedKey>;

SavedState saveState(Registry& registry, const std::vector<RegistryPlace>& places);

// Makes every place what it was; touches nothing that is. A key above a place that was not there goes when it
// is empty. Throws when that can't be done, and where a place is another afterwards.
void putBack(Registry& registry, const SavedState& state);

// The file that a saved state is kept in. `readState` throws std::runtime_error for anything that is no such
// file.
std::string stateText(const SavedState& state);
SavedState readState(std::string_view text);

}  // namespace vordane::kit

#include "kit/core/saved_state.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "text/utf8.h"

namespace vordane::kit {
namespace {

using nlohmann::json;

constexpr int fileVersion = 1;

RegistryPlace below(const RegistryPlace& place, const std::u16string& key) {
  return {place.hive, place.view, place.path + u'\\' + key};
}

// Makes the key and what is in it as they were; `now` is what stands there.
void makeEqual(Registry& registry, const RegistryPlace& place, const RegistryTree& then,
               const std::optional<RegistryTree>& now) {
  if (!now) registry.makeKey(place, then.rights);
  const RegistryTree& here = now ? *now : RegistryTree{};
  for (const auto& [name, value] : here.values)
    if (!then.values.contains(name)) registry.remove(place, name);
  for (const auto& [name, value] : then.values) {
    const auto found = here.values.find(name);
    if (found == here.values.end() || found->second != value) registry.write(place, name, value);
  }
  for (const auto& [name, tree] : here.keys)
    if (!then.keys.contains(name)) registry.removeKey(below(place, name));
  for (const auto& [name, tree] : then.keys) {
    const auto found = here.keys.find(name);
    const auto there = found == here.keys.end() ? std::optional<RegistryTree>{} : found->second;
    if (!there || *there != tree) makeEqual(registry, below(place, name), tree, there);
  }
}

RegistryPlace above(const RegistryPlace& place) {
  const std::size_t end = place.path.rfind(u'\\');
  return {place.hive, place.view, end == place.path.npos ? std::u16string{} : place.path.substr(0, end)};
}

// The keys above a place that are not there, the lowest first.
void addMissingAbove(Registry& registry, const RegistryPlace& place, SavedState& out) {
  for (RegistryPlace at = above(place); !at.path.empty() && !registry.exists(at); at = above(at)) {
    const auto isKnown = [&](const SavedKey& key) { return key.place == at; };
    if (std::none_of(out.begin(), out.end(), isKnown)) out.push_back({at, std::nullopt, true});
  }
}

void removeEmpty(Registry& registry, const RegistryPlace& place) {
  if (!registry.exists(place)) return;
  const std::optional<RegistryTree> now = registry.read(place);
  if (now && now->values.empty() && now->keys.empty()) registry.removeKey(place);
}

void putBackPlace(Registry& registry, const SavedKey& key) {
  const std::optional<RegistryTree> now = registry.read(key.place);
  if (now == key.tree) return;
  if (key.tree)
    makeEqual(registry, key.place, *key.tree, now);
  else
    registry.removeKey(key.place);
}

json valueJson(const RegistryValue& value) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string data;
  for (const std::uint8_t byte : value.data) (data += digits[byte >> 4U]) += digits[byte & 15U];
  return {{"type", value.type}, {"data", data}};
}

RegistryValue valueOf(const json& from) {
  RegistryValue value{.type = from.at("type").get<std::uint32_t>(), .data = {}};
  const auto data = from.at("data").get<std::string>();
  if (data.size() % 2 != 0) throw std::runtime_error("half a byte");
  for (std::size_t i = 0; i < data.size(); i += 2) {
    std::size_t read = 0;
    value.data.push_back(static_cast<std::uint8_t>(std::stoul(data.substr(i, 2), &read, 16)));
    if (read != 2) throw std::runtime_error("no byte: " + data.substr(i, 2));
  }
  return value;
}

json treeJson(const RegistryTree& tree) {
  json values = json::object();
  for (const auto& [name, value] : tree.values) values[text::toUtf8(name)] = valueJson(value);
  json keys = json::object();
  for (const auto& [name, key] : tree.keys) keys[text::toUtf8(name)] = treeJson(key);
  return {{"rights", tree.rights}, {"values", values}, {"keys", keys}};
}

RegistryTree treeOf(const json& from) {
  RegistryTree tree;
  tree.rights = from.at("rights").get<std::string>();
  for (const auto& [name, value] : from.at("values").items())
    tree.values[text::fromUtf8(name)] = valueOf(value);
  for (const auto& [name, key] : from.at("keys").items()) tree.keys[text::fromUtf8(name)] = treeOf(key);
  return tree;
}

}  // namespace

std::string nameOf(const RegistryPlace& place) {
  return (place.hive == Hive::machine ? "HKLM\\" : "HKCU\\") + text::toUtf8(place.path) +
         (place.view == View::words64 ? " (64-bit)" : " (32-bit)");
}

SavedState saveState(Registry& registry, const std::vector<RegistryPlace>& places) {
  SavedState state;
  for (const RegistryPlace& place : places) {
    registry.demandRights(place);
    state.push_back({place, registry.read(place)});
  }
  SavedState frame;
  for (const RegistryPlace& place : places) addMissingAbove(registry, place, frame);
  // The lower ones go first.
  std::stable_sort(frame.begin(), frame.end(), [](const SavedKey& left, const SavedKey& right) {
    return left.place.path.size() > right.place.path.size();
  });
  state.insert(state.end(), frame.begin(), frame.end());
  return state;
}

void putBack(Registry& registry, const SavedState& state) {
  for (const SavedKey& key : state)
    if (!key.above) putBackPlace(registry, key);
  for (const SavedKey& key : state)
    if (key.above) removeEmpty(registry, key.place);
  // The same key may be seen in both views.
  for (const SavedKey& key : state)
    if (!key.above && registry.read(key.place) != key.tree)
      throw std::runtime_error(nameOf(key.place) + " is not what it was");
}

std::string stateText(const SavedState& state) {
  json keys = json::array();
  for (const SavedKey& key : state)
    keys.push_back({{"machine", key.place.hive == Hive::machine},
                    {"words", key.place.view == View::words64 ? 64 : 32},
                    {"path", text::toUtf8(key.place.path)},
                    {"tree", key.tree ? treeJson(*key.tree) : json()},
                    {"above", key.above}});
  return json{{"vordaneKitState", fileVersion}, {"keys", keys}}.dump(1) + '\n';
}

SavedState readState(std::string_view text) {
  try {
    const json whole = json::parse(text);
    if (whole.at("vordaneKitState") != fileVersion) throw std::runtime_error("of another version");
    SavedState state;
    for (const json& key : whole.at("keys")) {
      SavedKey saved;
      saved.place.hive = key.at("machine").get<bool>() ? Hive::machine : Hive::user;
      saved.place.view = key.at("words").get<int>() == 64 ? View::words64 : View::words32;
      saved.place.path = text::fromUtf8(key.at("path").get<std::string>());
      if (!key.at("tree").is_null()) saved.tree = treeOf(key.at("tree"));
      saved.above = key.at("above").get<bool>();
      state.push_back(std::move(saved));
    }
    return state;
  } catch (const std::exception& failure) {
    throw std::runtime_error(std::string("the saved registration can't be read: ") + failure.what());
  }
}

}  // namespace vordane::kit

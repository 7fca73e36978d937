// The registration that stood before stands afterwards, whatever happened between.
#include "kit/core/saved_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace vordane::kit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A registry in memory that notes what is changed. Both views see the same keys below "Shared".
class MemoryRegistry : public Registry {
 public:
  std::optional<RegistryTree> read(const RegistryPlace& place) override {
    RegistryTree* const tree = find(place);
    return tree == nullptr ? std::optional<RegistryTree>{} : *tree;
  }
  bool exists(const RegistryPlace& place) override { return find(place) != nullptr; }
  void demandRights(const RegistryPlace& place) override {
    if (place.path == closed) throw std::runtime_error("no rights");
  }
  void makeKey(const RegistryPlace& place, const std::string& rights) override {
    count("make", place);
    RegistryTree* at = &root(place);
    for (const std::u16string& part : parts(place.path)) at = &at->keys[part];
    at->rights = rights;
  }
  void removeKey(const RegistryPlace& place) override {
    count("remove", place);
    auto path = parts(place.path);
    const std::u16string last = path.back();
    path.pop_back();
    RegistryTree* at = &root(place);
    for (const std::u16string& part : path) at = &at->keys[part];
    at->keys.erase(last);
  }
  void write(const RegistryPlace& place, const std::u16string& name, const RegistryValue& value) override {
    count("write", place);
    find(place)->values[name] = value;
  }
  void remove(const RegistryPlace& place, const std::u16string& name) override {
    count("take", place);
    find(place)->values.erase(name);
  }

  std::vector<std::string> changes;
  int breaksAt = -1;
  std::u16string closed;

 private:
  static std::vector<std::u16string> parts(std::u16string_view path) {
    std::vector<std::u16string> out;
    for (std::size_t end = 0; end != path.npos; path.remove_prefix(end == path.npos ? 0 : end + 1)) {
      end = path.find(u'\\');
      out.emplace_back(path.substr(0, end));
    }
    return out;
  }
  RegistryTree& root(const RegistryPlace& place) {
    const bool shared = place.path.starts_with(u"Shared");
    return roots_[{static_cast<int>(place.hive), shared ? 0 : static_cast<int>(place.view)}];
  }
  RegistryTree* find(const RegistryPlace& place) {
    RegistryTree* at = &root(place);
    for (const std::u16string& part : parts(place.path)) {
      const auto next = at->keys.find(part);
      if (next == at->keys.end()) return nullptr;
      at = &next->second;
    }
    return at;
  }
  void count(const char* deed, const RegistryPlace& place) {
    if (breaksAt == static_cast<int>(changes.size())) throw std::runtime_error("the power went");
    changes.push_back(deed + (" " + nameOf(place)));
  }
  std::map<std::pair<int, int>, RegistryTree> roots_;
};

const RegistryPlace clsid{Hive::machine, View::words64, u"CLSID\\{A}"};
const RegistryPlace library{Hive::machine, View::words64, u"Shared\\{L}"};
const RegistryPlace library32{Hive::machine, View::words32, u"Shared\\{L}"};
const RegistryPlace own{Hive::user, View::words32, u"CLSID\\{A}"};
const std::vector<RegistryPlace> places{clsid, library, library32, own};

RegistryValue text(char first) {
  return {1, {static_cast<std::uint8_t>(first), 0, 0, 0}};
}

void install(MemoryRegistry& registry) {
  registry.makeKey(clsid, "D:P(A;;KA;;;BA)");
  registry.write(clsid, u"", text('V'));
  registry.makeKey({clsid.hive, clsid.view, clsid.path + u"\\LocalServer32"}, "");
  registry.write({clsid.hive, clsid.view, clsid.path + u"\\LocalServer32"}, u"", text('C'));
  registry.makeKey(library, "");
  registry.changes.clear();
}

// What a test leaves when it registers programs of its own and takes them away.
void disturb(MemoryRegistry& registry) {
  registry.removeKey(clsid);
  registry.write(library, u"new", text('n'));
  registry.makeKey({library.hive, library.view, library.path + u"\\1.0"}, "");
  registry.makeKey(own, "");
  registry.write(own, u"", text('X'));
  registry.changes.clear();
}

TEST(SavedState, IsPutBackWhole) {
  MemoryRegistry registry;
  install(registry);
  const SavedState saved = saveState(registry, places);
  disturb(registry);
  putBack(registry, saved);
  EXPECT_EQ(saveState(registry, places), saved);
  EXPECT_EQ(registry.read(clsid)->rights, "D:P(A;;KA;;;BA)")
      << "a key that is made again has its rights again";
  EXPECT_EQ(registry.read(own), std::nullopt);
}

TEST(SavedState, WhatIsAsItWasIsNotTouched) {
  MemoryRegistry registry;
  install(registry);
  const SavedState saved = saveState(registry, places);
  putBack(registry, saved);
  EXPECT_THAT(registry.changes, IsEmpty());
  registry.write(clsid, u"", text('W'));
  registry.changes.clear();
  putBack(registry, saved);
  EXPECT_THAT(registry.changes, ElementsAre("write HKLM\\CLSID\\{A} (64-bit)"));
}

// The user had no classes at all: what was made for the tests' goes, what somebody else has put there
// meanwhile stays.
TEST(SavedState, EmptyKeysAboveGoThatWereNotThere) {
  MemoryRegistry registry;
  install(registry);
  const RegistryPlace above{Hive::user, View::words32, u"CLSID"};
  const SavedState saved = saveState(registry, places);
  disturb(registry);
  putBack(registry, readState(stateText(saved)));
  EXPECT_FALSE(registry.exists(above));
  disturb(registry);
  registry.makeKey({above.hive, above.view, u"CLSID\\{Somebody}"}, "");
  putBack(registry, saved);
  EXPECT_TRUE(registry.exists({above.hive, above.view, u"CLSID\\{Somebody}"}));
  EXPECT_FALSE(registry.exists(own));
}

// Broken off after any of its changes, and done again from the file.
TEST(SavedState, CanBePutBackAfterPuttingBackWasBrokenOff) {
  for (int at = 0;; ++at) {
    MemoryRegistry registry;
    install(registry);
    const std::string file = stateText(saveState(registry, places));
    disturb(registry);
    registry.breaksAt = at;
    bool broke = false;
    try {
      putBack(registry, readState(file));
    } catch (const std::runtime_error&) {
      broke = true;
    }
    registry.breaksAt = -1;
    putBack(registry, readState(file));
    EXPECT_EQ(stateText(saveState(registry, places)), file) << at;
    if (!broke) {
      EXPECT_GT(at, 4);
      return;
    }
  }
}

TEST(SavedState, ItsFileHoldsEveryByte) {
  const SavedState state{
      {clsid, RegistryTree{"D:", {{u"", {3, {0, 255, 16}}}, {u"N\u00E4me", {4, {}}}}, {{u"sub", {}}}}},
      {own, std::nullopt}};
  const SavedState read = readState(stateText(state));
  EXPECT_EQ(read, state);
  EXPECT_EQ(read[0].tree->rights, "D:");
}

TEST(SavedState, AFileThatIsDamagedIsRefused) {
  const std::string whole = stateText({{clsid, RegistryTree{"", {{u"a", {3, {1, 2}}}}, {}}}});
  for (std::size_t length = 0; length + 2 < whole.size(); length += 7)
    EXPECT_THROW(readState(whole.substr(0, length)), std::runtime_error) << length;
  EXPECT_THROW(readState("{\"vordaneKitState\": 2, \"keys\": []}"), std::runtime_error);
  std::string odd = whole;
  odd.replace(odd.find("0102"), 4, "01xy");
  EXPECT_THROW(readState(odd), std::runtime_error);
}

TEST(SavedState, NothingIsSavedThatCouldNotBePutBack) {
  MemoryRegistry registry;
  registry.closed = library.path;
  EXPECT_THROW(saveState(registry, places), std::runtime_error);
}

// A registry that takes the change and does not keep it.
TEST(SavedState, WhatIsNotAsItWasAfterwardsIsSaid) {
  class Forgetful : public MemoryRegistry {
    void write(const RegistryPlace&, const std::u16string&, const RegistryValue&) override {}
  } registry;
  const SavedState saved{{clsid, RegistryTree{"", {{u"", text('V')}}, {}}}};
  try {
    putBack(registry, saved);
    ADD_FAILURE();
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(), "HKLM\\CLSID\\{A} (64-bit) is not what it was");
  }
}

}  // namespace
}  // namespace vordane::kit

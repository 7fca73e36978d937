// What a person does with the list stands beside what the window is asked to do: with a filter, a text that
// is looked for, copies, saved files, notes, a place that is kept, a digest of floods and marks of what is
// new, and without them, the same statements run in the same order, and hosts notice the same.
#include <filesystem>
#include <random>

#include "fakes/watched_database.h"
#include "list/copying.h"
#include "list/finder.h"
#include "list/flood_digest.h"
#include "list/last_look.h"
#include "list/looking.h"
#include "list/new_rows.h"
#include "list/saving.h"
#include "list/steady.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

// The rows go through a desk, as the drawn window's do; between any two steps a person has time for its work.
class DeskView : public StoryView {
 public:
  using StoryView::StoryView;
  void setRows(window::GridSource* source) override {
    desk.setStored(source, use && use() != window::ListUse::never ? std::optional<std::u16string>(u"any")
                                                                  : std::nullopt);
    finder.begin();
    if (source != nullptr && steadied) placed(*source);
    source != nullptr&& steadied ? digest.begin() : digest.forget();
    newRows.begin();
    if (lastLook) lastLook->begin();
    StoryView::setRows(source != nullptr ? &desk : nullptr);
  }
  // Somebody stands on the last row and stays there.
  void placed(window::GridSource& source) {
    if (steady.shown(source, list::Steady::Why::renewed, true)) ++found;
    const std::size_t last = source.size() - 1;
    steady.caretAt(*source.row(last), last, source.size());
  }
  // What the timer does: a slice when it may, so often as there is work.
  void haveTime() {
    while (desk.busy() && use() == window::ListUse::now) desk.work([] { return false; });
    finder.begin();
    while (finder.busy() && use() == window::ListUse::now) finder.work([] { return false; });
    while (digest.busy() && use() == window::ListUse::now) digest.work([] { return false; });
    if (digest.flood()) ++floods;
    if (!lastLook) return;
    haveLooked();
    if (use() == window::ListUse::now) input().lookAtStore();
  }
  // The exchange shown has been in front for five seconds; the next new fault is gone to before.
  void haveLooked() {
    std::vector<std::int64_t> exchanges;
    for (const auto& entry : list().items()) exchanges.push_back(entry.itemData);
    while (newRows.busy() && use() == window::ListUse::now) newRows.work([] { return false; });
    while (lastLook->busy() && use() == window::ListUse::now)
      lastLook->work(*input().arrivals(), exchanges, [] { return false; });
    if (list().listIndex() < 0) return;
    const std::int64_t shown = exchanges[static_cast<std::size_t>(list().listIndex())];
    newFaults += lastLook->newFaults(shown);
    const auto mark = lastLook->mark(shown);
    if (mark && newRows.next(*mark, {})) ++nextNew;
    if (newRows.highest()) lastLook->looked(shown, *newRows.highest());
  }
  // To the first of them, as far as it has none.
  void writeNote() {
    database::Notes& notes = *desk.list()->notes();
    const std::int64_t fault = desk.row(0)->count;
    const database::Note note{u"anna", u"2026/11/21 08:15", u"cable"};
    EXPECT_EQ(notes.put(fault, notes.of(fault).value_or(database::Note{}), note), database::Notes::Put::kept);
    EXPECT_EQ(desk.note(fault), note);
    desk.noteWritten();
    haveTime();
    EXPECT_EQ(desk.size(), 1U);
    ++notesWritten;
  }
  void copyAndSave() {
    list::Copying copying(desk, {{0, desk.size()}}, list::RowForm::lines, {});
    while (copying.work([] { return false; }) == list::Copying::State::atWork) {
    }
    EXPECT_FALSE(copying.text().empty());
    const auto file = std::filesystem::temp_directory_path() /
                      ("vordane-story-" + std::to_string(std::random_device{}()) + ".json");
    list::Saving saving(desk, list::makeRowWriter(list::RowForm::json, {}, desk.size()), file);
    while (saving.work([] { return false; }) == list::Saving::State::atWork) {
    }
    EXPECT_EQ(saving.state(), list::Saving::State::saved);
    EXPECT_TRUE(std::filesystem::remove(file));
  }
  list::Desk desk;
  list::Finder finder{desk};
  list::Steady steady;
  list::FloodDigest digest{desk};
  list::NewRows newRows{desk};
  std::unique_ptr<list::LastLook> lastLook;
  std::function<window::Control&()> list;
  std::function<window::ViewEvents&()> input;
  std::size_t newFaults = 0, nextNew = 0;
  bool steadied = false;
  int found = 0;  // times that the place was found again
  int floods = 0, notesWritten = 0;
  std::function<window::ListUse()> use;
};

class ListStory : public Story {
 protected:
  struct Seen {
    std::vector<std::u16string> statements;
    Lines trace;
    std::vector<std::u16string> rows;
  };

  void begin() {
    engine.between = [this](std::u16string_view path, auto database) -> std::unique_ptr<database::Database> {
      if (!path.ends_with(u"FAULT.MDB")) return database;
      auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(database));
      watched->before = [this](std::u16string_view step) { seen.statements.emplace_back(step); };
      return watched;
    };
    start();
    deskView.use = [this] { return form().input().listUse(); };
    layer = createLayer();
  }
  void start() {
    application =
        std::make_unique<Application>(Workstation{settings, clock, files, creator, boxes, documents, engine,
                                                  deskView, pictures, process, events, program},
                                      state);
    started = basMain::Main(*application);
  }
  void filter(bool wanted) {
    if (!wanted) return;
    list::Filter only;
    only.kinds = {list::KindRule::Way::only, {u"15"}};
    only.text = u"15";
    deskView.desk.setFilter(only);
    deskView.desk.wantFacts(true);
    deskView.finder.seek(u"15");
    deskView.haveTime();
    if (deskView.desk.size() == 0) return;
    EXPECT_EQ(deskView.finder.hits(), 1U);
    deskView.writeNote();
    deskView.copyAndSave();
  }
  bool tickOnce() {
    if (deskView.timer == 0) return false;
    deskView.timer = 0;
    form().input().tick();
    return true;
  }

  // A list is requested, shown, sorted, another exchange is chosen, the first deleted.
  Seen live(bool filtered) {
    begin();
    deskView.steadied = filtered;
    if (filtered) deskView.lastLook = std::make_unique<list::LastLook>(settings);
    deskView.list = [this]() -> window::Control& { return form().form().control(u"drpPBXList"); };
    deskView.input = [this]() -> window::ViewEvents& { return form().input(); };
    for (const char16_t* name : {u"PBX-2", u"PBX-1"}) {
      registerPbx(name);
      filter(filtered);
      form().input().buttonPressed(0);
      tickOnce();
      exchange().answer(0, aFlood());
      while (tickOnce()) deskView.haveTime();
      exchange().answerLamps(u"10");
      while (tickOnce()) deskView.haveTime();
      filter(filtered);
    }
    EXPECT_EQ(deskView.rows->size(), filtered ? 1U : 12U);
    for (const int column : {0, 4, 2, 2}) {
      form().input().headingClicked(column);
      deskView.haveTime();
    }
    form().input().exchangeChosen(1);
    deskView.haveTime();
    EXPECT_EQ(deskView.rows->size(), filtered ? 1U : 12U);
    EXPECT_TRUE(form().form().control(u"cmdPrint").flag(u"Enabled"));
    boxes.answer = 6;
    form().input().buttonPressed(2);
    while (tickOnce()) deskView.haveTime();
    const std::int64_t noted = deskView.desk.row(0)->count;
    EXPECT_EQ(deskView.desk.note(noted).has_value(), filtered);
    form().input().buttonPressed(3);
    while (tickOnce()) deskView.haveTime();
    EXPECT_EQ(deskView.desk.note(noted), std::nullopt) << "it went with its exchange";
    EXPECT_EQ(deskView.found > 0, filtered);
    EXPECT_EQ(deskView.floods > 0, filtered);
    EXPECT_EQ(deskView.notesWritten > 0, filtered);
    EXPECT_EQ(deskView.newFaults, filtered ? 24U : 0U) << "of both exchanges, once";
    EXPECT_EQ(deskView.nextNew > 0, filtered);
    seen.trace = taken();
    Seen result = std::move(seen);
    seen = {};
    return result;
  }
  // Twelve faults within two minutes.
  static std::vector<std::u16string> aFlood() {
    std::vector<std::u16string> entries{u"15 MJ MP000", u"26/11/20 10:15", u"00", u""};
    for (const char16_t number : std::u16string_view(u"123456789AB"))
      for (const std::u16string& entry : {std::u16string(u"02 MN MP000"), std::u16string(u"26/11/20 10:16"),
                                          std::u16string(u"0") + number, std::u16string()})
        entries.push_back(entry);
    return entries;
  }

  Seen seen;
  DeskView deskView{trace};
};

struct Unfiltered : ListStory {
  Seen run() { return live(false); }
  void TestBody() override {}
};
struct Filtered : ListStory {
  Seen run() { return live(true); }
  void TestBody() override {}
};

TEST(ListStories, TheSameStatementsRunWhateverIsDoneWithTheList) {
  Unfiltered without;
  const auto expected = without.run();
  Filtered with;
  const auto found = with.run();
  EXPECT_EQ(found.statements, expected.statements);
  EXPECT_EQ(found.trace, expected.trace);
  EXPECT_GT(expected.statements.size(), 20U);
}

using ListUses = Story;

TEST_F(ListUses, TheListIsAPersonsOnlyBetweenRequests) {
  using window::ListUse;
  startWithHost();
  EXPECT_EQ(form().input().listUse(), ListUse::now);
  press(0);
  EXPECT_EQ(form().input().listUse(), ListUse::later) << "the press waits for its tick";
  tick();
  EXPECT_EQ(form().input().listUse(), ListUse::later) << "an answer is waited for";
  {
    const auto call = form().enter();
    EXPECT_EQ(form().input().listUse(), ListUse::later);
  }
}

TEST_F(ListUses, WhereNobodySitsThereIsNone) {
  using window::ListUse;
  startWithHost();
  state.runMode = RunMode::scheduledRun;
  EXPECT_EQ(form().input().listUse(), ListUse::never);
  state.runMode = RunMode::creatingSchedule;
  EXPECT_EQ(form().input().listUse(), ListUse::never);
  state.runMode = RunMode::interactive;
  EXPECT_EQ(form().input().listUse(), ListUse::now);
  layer.reset();
  EXPECT_EQ(form().input().listUse(), ListUse::never) << "the window is gone";
}

TEST_F(ListUses, ABoxMakesItWait) {
  using window::ListUse;
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  while (tick()) {
  }
  exchange().answerLamps(u"10");
  while (tick()) {
  }
  std::optional<ListUse> meanwhile;
  boxes.meanwhile = [&] { meanwhile = form().input().listUse(); };
  pressAndTick(3);
  EXPECT_EQ(meanwhile, ListUse::later);
}

}  // namespace
}  // namespace vordane::startup

// An add-in, a database and the program around the host, all in memory.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "devhost/core/environment.h"
#include "fakes/scripted_object.h"
#include "platform/database.h"
#include "text/utf8.h"
#include "zulsim/fakes.h"

namespace vordane::devhost {

class FakeEnvironment : public Environment {
 public:
  void after(int milliseconds, std::function<void()> step) override {
    timers.after(milliseconds, std::move(step));
  }
  void pause(int milliseconds) override { timers.pause(milliseconds); }
  void log(std::u16string_view line) override { timers.log(line); }
  bool taken(std::u16string_view word) override { return timers.taken(word); }
  void give(std::u16string_view word) override { timers.give(word); }
  void vanish() override { ++timers.vanished; }
  automation::ObjectRef create(std::u16string_view progId) override {
    const auto found = classes.find(std::u16string(progId));
    if (found == classes.end())
      throw automation::AutomationError(static_cast<std::int32_t>(0x800401F3), u"no such class");
    return found->second();
  }
  bool waitUntil(const std::function<bool()>& done, int milliseconds) override {
    return timers.passUntil(done, milliseconds < 0 ? 1000000000 : milliseconds);
  }
  void print(std::string_view line) override { lines.emplace_back(line); }
  std::u16string now() override { return u"2006-11-27 10:15"; }

  zulsim::HandTimers timers;
  std::map<std::u16string, std::function<automation::ObjectRef()>> classes;
  std::vector<std::string> lines;
};

// The add-in as its host meets it: one request for each run, and every notification that belongs to it.
class FakeLayer : public fakes::ScriptedObject, public std::enable_shared_from_this<FakeLayer> {
 public:
  FakeLayer() {
    on(u"RegisterPBX", [this](auto arguments) {
      name_ = automation::toText(arguments[0].value);
      host_ = automation::toObject(arguments[1].value);
      id_ = automation::toInteger(arguments[2].value);
      automation::ObjectRef access = automation::toObject(automation::get(*host_, u"oZUL"));
      automation::call(*access, u"getsysinfo", {automation::byRef(name_)});
      return automation::Value(false);
    });
    on(u"Visible", [this](auto arguments) -> automation::Value {
      if (!arguments.empty()) visible_ = automation::toBoolean(arguments[0].value);
      return visible_;
    });
    on(u"RunSchedule", [this](auto arguments) {
      key_ = automation::toText(arguments[0].value);
      request();
      return automation::Value(std::int16_t{0});
    });
    on(u"CallBack", [this](auto arguments) {
      answer(*automation::toObject(arguments[0].value));
      return automation::Value(automation::Empty{});
    });
  }

  // Releasing the last layer: the place is saved through the host.
  ~FakeLayer() override {
    if (host_)
      tell(u"REGComData",
           {automation::byRef(std::u16string(u"VORDANE")), automation::byRef(std::u16string(u"MOVE")),
            automation::byRef(std::u16string(u"1200,900"))});
  }

 private:
  automation::ObjectRef server() { return automation::toObject(automation::get(*host_, u"oPBX")); }

  void tell(std::u16string_view member, std::initializer_list<automation::Argument> arguments = {}) {
    try {
      automation::call(*host_, member, arguments);
    } catch (const automation::AutomationError&) {
      // A host may lack any of them.
    }
  }

  void request() {
    const std::u16string id = automation::toText(automation::call(
        *server(), u"Login",
        {automation::byRef(name_), automation::byVal(automation::ObjectRef(shared_from_this()))}));
    tell(u"ShowMessage", {automation::byRef(u"PBX " + id)});
    const auto record = std::make_shared<zulsim::AnswerRecord>();
    record->addEntry(u"LEA0", {});
    record->setScalar(u"LoginID", id);
    record->setScalar(u"Tag", std::u16string(u"10"));
    const std::u16string accepted = automation::toText(
        automation::call(*server(), u"SendRequest", {automation::byRef(automation::ObjectRef(record))}));
    tell(u"ShowMessage", {automation::byRef(u"PBX " + accepted)});
    tell(u"TurnOnFlow");
  }

  void answer(automation::Object& record) {
    tell(u"ShowMessage", {automation::byRef(automation::get(record, u"Message"))});
    tell(u"ShowCode", {automation::byRef(automation::get(record, u"ErrCode"))});
    automation::call(*server(), u"LogOut",
                     {automation::byRef(name_), automation::byRef(automation::get(record, u"LoginID"))});
    tell(u"TurnOffFlow");
    tell(u"EndProcess", {automation::byRef(key_), automation::byRef(std::int16_t{20000})});
    tell(u"UnloadChild", {automation::byRef(id_)});
  }

  std::u16string name_, key_;
  std::int16_t id_ = 0;
  bool visible_ = false;
  automation::ObjectRef host_;
};

using Row = std::map<std::u16string, database::Value>;

class FakeRecordset : public database::Recordset {
 public:
  explicit FakeRecordset(std::vector<Row> rows) : rows_(std::move(rows)) {}
  bool atEnd() override { return current_ >= rows_.size(); }
  bool isEmpty() override { return rows_.empty(); }
  std::int32_t recordCount() override { return rows_.empty() ? 0 : 1; }
  void moveFirst() override { current_ = 0; }
  void moveNext() override { ++current_; }
  database::Value get(std::u16string_view column) override {
    return rows_.at(current_).at(std::u16string(column));
  }
  database::Value get(std::size_t) override { return refuse(); }
  void set(std::u16string_view, database::Value) override { refuse(); }
  void addNew() override { refuse(); }
  void edit() override { refuse(); }
  void update() override { refuse(); }
  void close() override {}

 private:
  [[noreturn]] static database::Value refuse() { throw database::DatabaseError(3027, u"read-only"); }

  std::vector<Row> rows_;
  std::size_t current_ = 0;
};

// FAULT.MDB for a reader: both tables, and only the two statements that a report needs.
struct FakeFaultDatabase {
  std::vector<Row> exchanges, faults;
  int nextCount = 1;

  void addExchange(std::int16_t id, std::u16string name, bool major = false) {
    exchanges.push_back({{u"ID", id},
                         {u"PBXName", std::move(name)},
                         {u"TimeStamp", std::u16string(u"2006-11-27 09:00:00")},
                         {u"MJ", major},
                         {u"MN", automation::Null{}}});
  }
  void addFault(std::int16_t id, std::u16string fault, std::u16string alarm, std::u16string date,
                std::u16string cpu, database::Value description) {
    faults.push_back({{u"ID", id},
                      {u"Fault", std::move(fault)},
                      {u"Alarm", std::move(alarm)},
                      {u"Date", std::move(date)},
                      {u"CPU", std::move(cpu)},
                      {u"Count", std::int32_t{nextCount++}},
                      {u"Description", std::move(description)}});
  }
};

class FakeEngine : public database::Engine {
 public:
  explicit FakeEngine(const FakeFaultDatabase& content) : content_(content) {}

  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override {
    opened.emplace_back(path);
    EXPECT_TRUE(readOnly);
    if (missing) throw database::DatabaseError(3024, u"Could not find the file.");
    return std::make_unique<Opened>(content_);
  }

  bool missing = false;
  std::vector<std::u16string> opened;

 private:
  class Opened : public database::Database {
   public:
    explicit Opened(const FakeFaultDatabase& content) : content_(content) {}
    std::unique_ptr<database::Recordset> openRecordset(const database::Statement& statement) override {
      if (statement == u"SELECT * FROM PBXList Order by [TimeStamp] Desc")
        return std::make_unique<FakeRecordset>(content_.exchanges);
      std::vector<Row> rows;
      for (const Row& row : content_.faults)
        if (statement == u"SELECT * FROM FaultDisplay WHERE ID = " + automation::toText(row.at(u"ID")) +
                             u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, "
                             u"[Description] Desc")
          rows.push_back(row);
      return std::make_unique<FakeRecordset>(rows);
    }
    std::unique_ptr<database::RowList> openRowList(const database::Statement&,
                                                   std::span<const std::u16string_view>) override {
      throw database::DatabaseError(3027, u"no row lists here");
    }
    void execute(const database::Statement&) override { throw database::DatabaseError(3027, u"read-only"); }
    void beginBatch() override {}
    void checkpoint() override {}
    void endBatch() override {}
    void setProgress(Progress) override {}
    void close() noexcept override {}

   private:
    const FakeFaultDatabase& content_;
  };

  const FakeFaultDatabase& content_;
};

}  // namespace vordane::devhost

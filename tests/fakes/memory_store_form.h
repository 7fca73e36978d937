// The window of the fault store, in memory: it writes down what the host, the user and the exchange would
// notice, in their order.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fakes/memory_view.h"
#include "fakes/set_clock.h"
#include "faults/fault_texts.h"
#include "faults/stored_words.h"
#include "language/message_numbers.h"
#include "platform/control_types.h"
#include "store/fault_store.h"
#include "store/reset_receipts.h"
#include "store/store_form.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::fakes {

class MemoryStoreForm : public store::StoreForm {
 public:
  MemoryStoreForm() : window(u"dlgFaultDisplay", window::designedProperties(u"Form")) {
    const auto add = [this](std::u16string name, std::u16string type) {
      window.add(std::move(name), -1, type, window::designedProperties(type));
    };
    add(u"drpPBXList", u"ComboBox");
    add(u"txtTimeTag", u"TextBox");
    for (const auto* label : {u"lblMJ", u"lblMN"}) add(label, u"Label");
    for (const auto* button :
         {u"cmdRequest", u"cmdReset", u"cmdPrint", u"cmdClear", u"cmdLookUp", u"cmdFilter", u"cmdClose"})
      add(button, u"CommandButton");
    fillMessages();
  }

  database::Database* faultDatabase() override { return database.get(); }
  const cFaultDisplay& faultDecoder(bool wide) override {
    decoderWide = wide;
    if (!decoder) decoder = std::make_unique<cFaultDisplay>(texts, decoderWide);
    return *decoder;
  }
  database::Agreement storingLanguage() override { return {language, markOfStoredWords(texts)}; }
  automation::ObjectRef host() override { return hostObject; }
  std::u16string installPath(std::u16string_view item) override {
    return joined({u"C:\\SUITE\\ADDINS\\", item, u"\\"});
  }
  void hostMessage(std::u16string_view text) override {
    if (!shared.StandAlone) note(joined({u"ShowMessage ", text}));
  }
  void hostCode(std::int32_t code) override {
    if (!shared.StandAlone) note(joined({u"ShowCode ", text::decimal(code)}));
  }
  int showBox(std::int16_t number, std::u16string_view substitution) override {
    note(joined({u"Box ", text::decimal(number), substitution.empty() ? u"" : u" ", substitution}));
    return boxAnswer;
  }
  bool alive() override { return living; }
  void listTaken(const status::ListAccount& account) override {
    status.listTaken(account);
    status::showLine(memoryView, status);
    note(joined({u"Account ", text::decimal(account.received), u"=", text::decimal(account.added), u"+",
                 text::decimal(account.alreadyStored), u"+", text::decimal(account.refused()),
                 account.complete() ? u"" : u" incomplete"}));
  }
  void deletionGivenUp() override { note(u"DeletionGivenUp"); }
  void displayFailed(std::u16string_view) override {}

  // What the store works on. A test may put another clock in its place before the store is made.
  store::Surroundings around() { return {window, memoryView, shared, *clock, status, receipts}; }
  // The answer under way.
  pbx::ReceivedList received() const { return {answer, exchange, requestWide, truncated, cut}; }
  // Takes the answer in and does what the window does behind it.
  void ingest(store::FaultStore& store) {
    using After = store::FaultStore::After;
    const After after = store.IngestFaultList(received());
    if (after == After::acknowledge) note(u"Acknowledge");
    if (after == After::endAction || (after == After::acknowledge && !acknowledged && living))
      note(u"EndAction");
  }

  // Adds one fault to the answer.
  void receive(std::u16string_view record, std::u16string_view date, std::u16string_view first = u"",
               std::u16string_view second = u"") {
    for (const auto entry : {record, date, first, second}) answer.AddToList(u"LEA0", entry);
  }
  std::vector<std::string> takeTrace() { return std::exchange(trace, {}); }
  bool enabled(std::u16string_view button) { return window.control(button).flag(u"Enabled"); }

  std::unique_ptr<database::Database> database;
  window::Form window;
  MemoryView memoryView;
  SharedState shared;
  SetClock setClock;
  platform::Clock* clock = &setClock;
  status::WindowStatus status{shared};
  platform::Program program;
  store::ResetReceipts receipts{*this, memoryView, shared, *clock, status, program};
  FaultTextTable texts;
  std::u16string language = u"English";
  bool decoderWide = true;
  std::unique_ptr<cFaultDisplay> decoder;
  automation::ObjectRef hostObject;
  std::u16string exchange = u"PBX-1";
  bool requestWide = true, truncated = false, cut = false, acknowledged = true, living = true;
  cListRequest answer;
  int boxAnswer = 1;
  // Called after each line of the trace: what the outside does meanwhile.
  std::function<void(const std::string& line)> meanwhile = [](const std::string&) {};
  std::vector<std::string> trace;

 private:
  static std::u16string joined(std::initializer_list<std::u16string_view> parts) {
    std::u16string result;
    for (const auto part : parts) result.append(part);
    return result;
  }
  void note(std::u16string_view line) {
    trace.push_back(text::toUtf8(line));
    meanwhile(trace.back());
  }

  void fillMessages() {
    shared.Messages.resize(message::count);
    for (std::size_t i = 0; i < message::count; ++i)
      shared.Messages[i] = joined({u"M", text::decimal(static_cast<std::int64_t>(i))});
    const std::pair<std::size_t, std::u16string_view> own[] = {
        {3, u"not open"},
        {4, u"nothing new"},
        {5, u"Data"},
        {6, u"["},
        {7, u"]"},
        {message::statusListComplete, u"{1}: {2} received, {3} new, {4} stored, {5} refused"},
        {message::statusListIncomplete, u"{1}, incomplete: {2} received, {3} new, {4} stored, {5} refused"},
        {message::runListComplete, u"{1} received, {2} new, {3} stored, {4} refused"},
        {message::runListIncomplete, u"incomplete, {1} received, {2} new, {3} stored, {4} refused"},
        {message::statusFaultCount, u"{1} faults"},
        {message::noticeStoring, u"storing {1} of {2}"},
        {message::noticeReading, u"reading"},
        {message::noticeReadingOf, u"reading {1} of {2}"},
        {message::noticeDeletingOf, u"deleting {1} of {2}"},
        {message::noticeDeleting, u"deleting"},
        {message::noticeNoExchange, u"no exchange"},
        {message::noticeFirstList, u"press to ask {1}"},
        {message::noticeNoFaults, u"{1} has no faults"},
        {message::noticeDatabaseClosed, u"database closed"},
        {message::reasonAccess, u"access: {1}"},
        {message::reasonDatabase, u"database: {1}"},
        {message::reasonTooLong, u"too long"},
        {message::reasonTextCut, u"text cut"},
    };
    for (const auto& [number, words] : own) shared.Messages[number] = words;
    texts.setMessages(shared.Messages);
    texts.setList(1, {u"code 0", u"code 1", u"code 2"});
  }
};

}  // namespace vordane::fakes

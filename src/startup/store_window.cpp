#include "startup/store_window.h"

#include <utility>

#include "faults/stored_words.h"
#include "language/comDatabase.h"
#include "language/message_numbers.h"
#include "startup/form_model.h"
#include "startup/window_end.h"

namespace vordane::startup {

using automation::byVal;

void StoreWindow::open() {
  if (!application_.LangDB) return;
  std::u16string reason;
  if (!comDatabase::OpenLanguageDatabase(application_.station().engine, path(), database_, false, &reason))
    application_.events().fileFailed(platform::Event::faultsNotOpened, path(), reason);
  status_.databaseOpened(database_ && database_->isOnNetwork());
}

std::u16string StoreWindow::path() const {
  return application_.installPath(u"Database") + u"FAULT.MDB";
}

void StoreWindow::displayFailed(std::u16string_view engineText) {
  application_.events().fileFailed(platform::Event::faultsUnreadable, path(), engineText);
}

void StoreWindow::closeDatabase() {
  status_.databaseClosed();
  closeLater(life_, database_);
}

void StoreWindow::close() {
  attempt([&] { closeDatabase(); });
  attempt([&] { life_.retire(std::shared_ptr<cFaultDisplay>(std::move(decoder_))); });
}

const cFaultDisplay& StoreWindow::faultDecoder(bool wideFaultFields) {
  wide_ = wideFaultFields;
  if (decoder_) return *decoder_;
  readFaultTexts(application_.state().Messages, form_, texts_);
  decoder_ = std::make_unique<cFaultDisplay>(texts_, wide_);
  return *decoder_;
}

database::Agreement StoreWindow::storingLanguage() {
  faultDecoder(wide_);  // its texts are read by now
  return {messageText(application_.state(), message::languageName), markOfStoredWords(texts_)};
}

void StoreWindow::hostMessage(std::u16string_view text) {
  host_.call(u"ShowMessage", {byVal(std::u16string(text))});
}

void StoreWindow::hostCode(std::int32_t code) {
  host_.call(u"ShowCode", {byVal(code)});
}

int StoreWindow::showBox(std::int16_t number, std::u16string_view substitution) {
  return application_.showBox(number, substitution);
}

void StoreWindow::reportToLog(const status::ListAccount& account) {
  using status::ListEnd;
  if (account.complete()) return;
  const bool store = account.end == ListEnd::databaseError || account.end == ListEnd::noDatabase;
  application_.events().runFailed(status::reasonText(application_.state(), account),
                                  store ? EventReports::Failed::store : EventReports::Failed::other);
}

void StoreWindow::listTaken(const status::ListAccount& account) {
  status_.listTaken(account);
  status::showLine(application_.station().view, status_);
  reportToLog(account);
  if (application_.state().runMode == RunMode::scheduledRun)
    comSchedule::writeRunLine(application_.runLog(), status::runLogText(application_.state(), account));
}

void StoreWindow::deletionGivenUp() {
  platform::Clock& clock = application_.station().clock;
  status_.deletionGivenUp(clock.regional(clock.now()));
  status::showLine(application_.station().view, status_);
}

}  // namespace vordane::startup

// Taking a received fault list in: the exchange's row, the faults, the account, the acknowledgement.
#include <algorithm>
#include <vector>

#include "language/message_numbers.h"
#include "pbx/response_codes.h"
#include "store/batch.h"
#include "store/fault_record.h"
#include "store/fault_store.h"
#include "store/long_step.h"
#include "store/statements.h"
#include "store/time_stamp.h"
#include "store/trap.h"
#include "text/text.h"

namespace vordane::store {
namespace {

// A fault is four entries in a row: record, date, two data texts.
constexpr std::int32_t groupSize = 4;

// What the exchange-access component sends in place of data begins with this.
constexpr std::u16string_view accessErrorPrefix = u"ZUL_";

struct Fault {
  std::u16string_view kind, alarm;
  std::u16string cpu, date, description;

  database::Statement same(std::int16_t exchangeId) const {
    return findFault(exchangeId, {kind, alarm, cpu, date, description});
  }
};

class Ingestion {
 public:
  // `decoder` decodes with the fields of the exchange.
  Ingestion(const pbx::ReceivedList& received, const cFaultDisplay& decoder, platform::Clock& clock)
      : received_(received),
        list_(received.entries),
        decoder_(decoder),
        clock_(clock),
        outcomes_(countGroups()) {}

  // Throw DatabaseError.
  void stampExchange(database::Database& database, std::int16_t& exchangeId) const;
  void storeFaults(database::Database& database, std::int16_t exchangeId, LongStep& step);

  // After an error: what is truly there counts, in case saving failed and not only a statement.
  void countAgain(database::Database& database, std::int16_t exchangeId, std::u16string error);

  bool somethingAdded() const { return count(Outcome::added) > 0; }
  status::ListAccount account() const;
  void setNoDatabase() { noDatabase_ = true; }
  const std::optional<std::u16string>& accessError() const { return accessError_; }
  std::int32_t groups() const { return static_cast<std::int32_t>(outcomes_.size()); }

 private:
  enum class Outcome : std::uint8_t { refused, added, alreadyStored };

  std::u16string_view entry(std::int32_t group, std::int32_t position) const {
    return list_.FirstData(group * groupSize + position);
  }
  std::size_t countGroups() const;
  std::int32_t count(Outcome outcome) const;
  void decode(std::int32_t group, Fault& fault) const;
  std::int32_t expectFrom(std::int32_t group, std::int16_t exchangeId, database::Database& database);
  const std::u16string* findAccessError(std::int32_t group) const;
  static void add(database::Recordset& faults, std::int16_t exchangeId, Fault& fault);
  status::ListEnd end() const;

  const pbx::ReceivedList& received_;
  const cListRequest& list_;
  const cFaultDisplay& decoder_;
  platform::Clock& clock_;
  std::vector<Outcome> outcomes_;  // one for each group received
  std::vector<Fault> faults_;      // those looked for at once; they keep their memory
  std::vector<database::Statement> same_;
  std::optional<std::u16string> accessError_, error_;
  bool noDatabase_ = false;
};

bool isFound(database::Database& database, const database::Statement& statement) {
  const auto same = database.openRecordset(statement);
  const bool found = same->recordCount() > 0;
  same->close();
  return found;
}

// `upper` keeps its memory between records.
bool isEndMark(std::u16string_view record, std::u16string& upper) {
  upper.assign(text::trim(record));
  std::transform(upper.begin(), upper.end(), upper.begin(), text::upper);
  return pbx::GetResponseCode(upper) == pbx::responseDataNotFound;
}

// Groups before the end mark, a last incomplete one counted.
std::size_t Ingestion::countGroups() const {
  const std::int32_t all = (list_.Count() + groupSize - 1) / groupSize;
  std::int32_t groups = 0;
  std::u16string upper;
  while (groups < all && !isEndMark(entry(groups, 0), upper)) ++groups;
  return static_cast<std::size_t>(groups);
}

std::int32_t Ingestion::count(Outcome outcome) const {
  return static_cast<std::int32_t>(std::count(outcomes_.begin(), outcomes_.end(), outcome));
}

// Into `fault`, whose memory is used again.
void Ingestion::decode(std::int32_t group, Fault& fault) const {
  const auto record = text::trim(entry(group, 0));
  fault.kind = faultKind(record);
  fault.alarm = alarmClass(record);
  fault.cpu = processor(record);
  fault.date = WidenYear(text::trim(entry(group, 1)));
  decoder_.GetFaultMessage(record, text::trim(entry(group, 2)), text::trim(entry(group, 3)),
                           fault.description);
}

// The faults from `group` on that are looked for at once, none behind what is no fault; behind the last of
// them.
std::int32_t Ingestion::expectFrom(std::int32_t group, std::int16_t exchangeId,
                                   database::Database& database) {
  faults_.resize(std::min(database.mostExpected(), static_cast<std::size_t>(groups() - group)));
  same_.clear();
  for (Fault& fault : faults_) {
    if (findAccessError(group) != nullptr) break;
    decode(group++, fault);
    same_.push_back(fault.same(exchangeId));
  }
  database.expect(same_);
  return group;
}

// Tested on the entries as they came, blanks and all.
const std::u16string* Ingestion::findAccessError(std::int32_t group) const {
  for (std::int32_t position = 0; position < groupSize; ++position) {
    const std::u16string& text = list_.FirstData(group * groupSize + position);
    // Most begin with a digit.
    if (!text.empty() && text.front() == accessErrorPrefix.front() && text.starts_with(accessErrorPrefix))
      return &text;
  }
  return nullptr;
}

void Ingestion::stampExchange(database::Database& database, std::int16_t& exchangeId) const {
  const std::u16string& name = received_.exchange;
  auto exchange = database.openRecordset(findExchange(name));
  if (exchange->recordCount() < 1) {
    exchange->close();
    exchange = database.openRecordset(allExchanges);
    exchange->addNew();
    exchange->set(u"PBXName", name);
    stampNow(*exchange, clock_);
    exchangeId = exchangeIdOf(exchange->get(u"ID"));
  } else {
    exchangeId = exchangeIdOf(exchange->get(u"ID"));
    exchange->edit();
    stampNow(*exchange, clock_);
  }
  exchange->update();
  exchange->close();
}

void Ingestion::storeFaults(database::Database& database, std::int16_t exchangeId, LongStep& step) {
  const auto faults = database.openRecordset(addFaults);
  std::int32_t first = 0, behind = 0;  // of those looked for at once
  for (std::int32_t group = 0; group < groups(); ++group) {
    step.at(static_cast<std::size_t>(group), outcomes_.size());
    if (const auto* found = findAccessError(group)) {
      accessError_ = *found;
      break;
    }
    if (group == behind) behind = expectFrom(first = group, exchangeId, database);
    const auto at = static_cast<std::size_t>(group - first);
    const bool isNew = !isFound(database, same_[at]);
    if (isNew) add(*faults, exchangeId, faults_[at]);
    outcomes_[static_cast<std::size_t>(group)] = isNew ? Outcome::added : Outcome::alreadyStored;
  }
  faults->close();
}

// Takes the fault's texts.
void Ingestion::add(database::Recordset& faults, std::int16_t exchangeId, Fault& fault) {
  faults.addNew();
  faults.set(u"ID", exchangeId);
  faults.set(u"Fault", std::u16string(fault.kind));
  faults.set(u"Alarm", std::u16string(fault.alarm));
  faults.set(u"CPU", std::move(fault.cpu));
  faults.set(u"Date", std::move(fault.date));
  faults.set(u"Description", std::move(fault.description));
  faults.update();
}

std::u16string doubled(char16_t quote, std::u16string_view text) {
  std::u16string result;
  for (const char16_t character : text) result.append(character == quote ? 2 : 1, character);
  return result;
}

// FindSameFault escapes nothing, so it can't find what was stored with a quote in it. The account must.
bool isStored(database::Database& database, std::int16_t exchangeId, const Fault& fault) {
  const std::u16string kind = doubled(u'\'', fault.kind), alarm = doubled(u'\'', fault.alarm),
                       cpu = doubled(u'\'', fault.cpu), date = doubled(u'\'', fault.date),
                       description = doubled(u'"', fault.description);
  return isFound(database, findFault(exchangeId, {kind, alarm, cpu, date, description}));
}

void Ingestion::countAgain(database::Database& database, std::int16_t exchangeId, std::u16string error) {
  error_ = std::move(error);
  std::size_t group = 0;
  Fault fault;
  const auto failure = trap([&] {
    for (; group < outcomes_.size() && outcomes_[group] != Outcome::refused; ++group) {
      decode(static_cast<std::int32_t>(group), fault);
      if (!isStored(database, exchangeId, fault)) outcomes_[group] = Outcome::refused;
    }
  });
  if (failure)
    std::fill(outcomes_.begin() + static_cast<std::ptrdiff_t>(group), outcomes_.end(), Outcome::refused);
}

status::ListEnd Ingestion::end() const {
  if (noDatabase_) return status::ListEnd::noDatabase;
  if (error_) return status::ListEnd::databaseError;
  if (accessError_) return status::ListEnd::accessError;
  if (received_.truncated) return status::ListEnd::tooLong;
  if (received_.cut) return status::ListEnd::textCut;
  const bool endMark = static_cast<std::int32_t>(outcomes_.size()) * groupSize < list_.Count();
  return endMark || list_.Count() % groupSize == 0 ? status::ListEnd::complete : status::ListEnd::cutShort;
}

status::ListAccount Ingestion::account() const {
  status::ListAccount account;
  account.exchange = received_.exchange;
  account.when = clock_.regional(clock_.now());
  account.end = end();
  if (account.end == status::ListEnd::databaseError) account.cause = *error_;
  if (account.end == status::ListEnd::accessError) account.cause = text::trim(*accessError_);
  account.received = groups();
  account.added = count(Outcome::added);
  account.alreadyStored = count(Outcome::alreadyStored);
  return account;
}

std::u16string told(const database::Agreement& words, const database::Agreement& beside) {
  return words.name == beside.name ? words.name + u" (" + words.mark + u")" : words.name;
}

// Why a station with these words must not write into the store, when other ones are kept there: each fault
// would be stored once more, in other words.
std::optional<std::u16string> whyOtherWords(const Surroundings& around, database::Database& database,
                                            const database::Agreement& own) {
  const database::Agreement kept = database.agree(languageSubject, own);
  if (kept.mark == own.mark) return {};
  return fillText(messageText(around.state, message::otherStoringLanguage),
                  {told(kept, own), told(own, kept)});
}

// Faults of a file have been stored in these words. Where those before them were stored in others, what the
// exchange had reported already stands there twice, and the account says so. It stops nothing that the file
// can't tell.
void compareWords(database::Database& database, const database::Agreement& own,
                  status::ListAccount& account) {
  try {
    const auto before = database.kept(languageSubject);
    if (before == own) return;
    database.keep(languageSubject, own);
    if (!before || before->mark == own.mark) return;
    account.wordsBefore = told(*before, own);
    account.words = told(own, *before);
  } catch (const database::DatabaseError&) {
  }
}

// The statements of one ingestion; why the list was not taken when one of them failed, or none may be made.
std::optional<std::u16string> takeList(const Surroundings& around, comSSDataGrid::FaultRows& shown,
                                       database::Database& database, const database::Agreement& language,
                                       Ingestion& list, std::int16_t& exchangeId) {
  std::optional<std::u16string> refused;
  auto failure = trap([&] {
    Batch batch(database);
    refused = whyOtherWords(around, database, language);
    if (refused) return;
    LongStep step(around, shown, database, LongStep::storing);
    list.stampExchange(database, exchangeId);
    list.storeFaults(database, exchangeId, step);
    batch.end();
  });
  return failure ? failure : refused;
}

}  // namespace

bool FindSameFault(std::int16_t id, database::Database& database, std::u16string_view record,
                   std::u16string_view date, std::u16string_view description) {
  const std::u16string cpu = processor(record);
  return !isFound(database, findFault(id, {faultKind(record), alarmClass(record), cpu, date, description}));
}

FaultStore::After FaultStore::IngestFaultList(const pbx::ReceivedList& received) {
  Ingestion list(received, form_.faultDecoder(received.wide), around_.clock);
  database::Database* database = openDatabase();
  if (!form_.alive()) return After::nothing;
  std::optional<std::u16string> failure;
  if (database == nullptr) {
    list.setNoDatabase();
  } else if ((failure = takeList(around_, grid_, *database, form_.storingLanguage(), list, exchangeId_))) {
    list.countAgain(*database, exchangeId_, *failure);
  }
  status::ListAccount account = list.account();
  if (database != nullptr && list.somethingAdded()) compareWords(*database, form_.storingLanguage(), account);
  tellAccount(account);
  if (failure) return endFailedList(*failure);
  if (database != nullptr && !showTakenList(list.somethingAdded(), list.accessError().has_value()))
    return After::nothing;
  return After::acknowledge;
}

void FaultStore::tellAccount(const status::ListAccount& account) {
  account_ = account;
  form_.listTaken(account);
}

// The list was not taken in whole, so it is not acknowledged: the exchange keeps it.
FaultStore::After FaultStore::endFailedList(std::u16string_view engineText) {
  if (!showError(engineText)) return After::nothing;
  if (database::Database* database = form_.faultDatabase()) refresh(*database, Report::quiet);
  return After::endAction;
}

bool FaultStore::showTakenList(bool somethingAdded, bool accessError) {
  if (!somethingAdded) {
    form_.hostMessage(messageText(around_.state, message::noNewFaults));
    if (!form_.alive()) return false;
    form_.showBox(accessError ? box::stepFailed : box::noNewFaults);
    if (!form_.alive()) return false;
  }
  if (database::Database* database = form_.faultDatabase()) refresh(*database, Report::box);
  return form_.alive();
}

}  // namespace vordane::store

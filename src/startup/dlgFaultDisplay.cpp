#include "startup/dlgFaultDisplay.h"

#include <cmath>
#include <cstdlib>
#include <utility>

#include "faults/kind_lists.h"
#include "language/comDatabase.h"
#include "language/comLanguage.h"
#include "language/comPicture.h"
#include "language/comTools.h"
#include "language/form_controls.h"
#include "language/message_numbers.h"
#include "pbx/response_codes.h"
#include "startup/form_model.h"
#include "startup/form_object.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane {
namespace {

using automation::byRef;
using automation::byVal;

constexpr std::u16string_view lastNarrowGeneration = u"M";

struct Loader {
  std::u16string_view table;
  bool (*load)(window::Form&, database::Database&);
};
constexpr Loader loaders[] = {{u"tForms", comLanguage::LocaliseForm},
                              {u"tControls", comLanguage::LocaliseControls},
                              {u"tComboBoxDT", comLanguage::LoadComboLists},
                              {u"tSSGridsHD", comLanguage::LocaliseGridHeadings}};

// A step of an ending: whatever fails in it, the next one runs.
template <class Step>
void attempt(Step step) noexcept {
  try {
    step();
  } catch (const std::exception&) {
  }
}

// A stored coordinate, "." as decimal mark; nothing for what is no number or lies nowhere near a screen.
std::optional<std::int32_t> coordinate(std::u16string_view text) {
  try {
    const double value = automation::toDouble(std::u16string(text::trim(text)));
    constexpr double limit = 10'000'000;
    if (!(std::abs(value) < limit)) return std::nullopt;
    return static_cast<std::int32_t>(std::lround(value));
  } catch (const automation::AutomationError&) {
    return std::nullopt;
  }
}

}  // namespace

dlgFaultDisplay::Entry::~Entry() {
  if (--form_.depth_ > 0) return;
  form_.retired_.clear();
  form_.retiredDecoder_.reset();
}

dlgFaultDisplay::dlgFaultDisplay(startup::Application& application)
    : application_(application),
      model_(startup::makeFormModel()),
      store_(*this),
      session_(*this, application.state()),
      caller_(std::make_shared<startup::FormObject>(*this)) {}

dlgFaultDisplay::~dlgFaultDisplay() {
  caller_->detach();
  store_.close();
  if (loaded_ && !unloaded_) view().detach();
}

// --- load

void dlgFaultDisplay::Load() {
  const Entry entry(*this);
  if (loaded_ || ending_) return;
  loaded_ = true;
  view().attach(model_, *this);
  try {
    loadSteps();
  } catch (const std::exception&) {
    // The load stops where it is; the flag that stays set tells.
  }
}

void dlgFaultDisplay::loadSteps() {
  loading_ = true;
  userCount_ = 0;
  state().stepCode = step::loading;
  openFaultDatabase();
  if (!faultDatabase_) {
    if (state().StandAlone) Unload();
    return;
  }
  store_.SetSortFlags();
  if (!showExchanges() || !alive()) return;
  localise();
  loading_ = false;
  state().runMode = RunMode::interactive;
  state().stepCode = step::loaded;
}

// False when the load goes no further. A host's creation waits for the load, perhaps with nobody there: it
// shows no box, and a database that can't be read is from then on as good as missing. A person sees one box.
bool dlgFaultDisplay::showExchanges() {
  using Report = store::FaultStore::Report;
  const bool shown = store_.FillExchangeList(hostMode() ? Report::quiet : Report::box);
  if (hostMode()) {
    if (!shown) {
      store_.close();
      close(faultDatabase_);
    }
    return shown;
  }
  if (!alive()) return false;
  const auto& station = application_.station();
  session_.CreateServer(station.files, station.settings, station.creator);
  usePBXName(station.program.commandLine, shown ? Report::box : Report::quiet);
  return true;
}

void dlgFaultDisplay::openFaultDatabase() {
  if (!application_.LangDB) return;
  comDatabase::OpenLanguageDatabase(application_.station().engine, installPath(u"Database") + u"FAULT.MDB",
                                    faultDatabase_, false);
}

// A loader that stops leaves the window usable: the status line names its table.
void dlgFaultDisplay::localise() {
  database::Database& language = *application_.LangDB;
  for (const Loader& loader : loaders)
    if (!loader.load(model_, language)) {
      if (!textsIncomplete_.empty()) textsIncomplete_ += u", ";
      textsIncomplete_ += loader.table;
    }
  // Rows shown while loading may have asked for the decoder before its lists were there.
  decoder_.reset();
  helpTexts_ = comLanguage::LoadHelpTexts(model_, language);
  if (storedLine_.empty()) storedLine_ = messageText(state(), message::statusNoList);
  showStatus();
}

// --- unload

void dlgFaultDisplay::beginEnding() {
  if (std::exchange(ending_, true)) return;
  application_.station().process.stopServing();
  timerEnabled_ = false;
  session_.interrupt();
}

void dlgFaultDisplay::Unload() {
  const Entry entry(*this);
  if (!loaded_ || std::exchange(unloaded_, true)) return;
  attempt([&] { beginEnding(); });
  attempt([&] { lastPlace_ = view().position(); });
  attempt([&] { view().stopTimer(); });
  store_.close();
  attempt([&] { view().detach(); });
  closeDatabases();
  retiredDecoder_ = std::move(decoder_);
  attempt([&] { notifyUnload(); });
  attempt([&] { session_.release(); });
  state().busy = false;
  if (state().StandAlone || userCount_ < 1) endProcess();
}

void dlgFaultDisplay::closeDatabases() {
  attempt([&] { close(application_.LangDB); });
  attempt([&] { close(faultDatabase_); });
}

// A step that waits further down the stack may still name a database: what is closed lives until it returns.
void dlgFaultDisplay::close(std::unique_ptr<database::Database>& database) {
  if (!database) return;
  database->close();
  retired_.push_back(std::move(database));
}

void dlgFaultDisplay::endProcess() {
  if (!std::exchange(processEnded_, true)) application_.station().process.end();
}

void dlgFaultDisplay::notifyUnload() {
  if (!parent_ || endingTold_) return;
  const RunMode mode = std::exchange(state().runMode, RunMode::interactive);
  if (mode == RunMode::creatingSchedule) {
    callHost(u"EndCreateSchedule", {byRef(cancelled_)});
    callHost(u"UnloadChild2", {byRef(id_)});
    return;
  }
  if (mode == RunMode::scheduledRun) {
    attempt([&] { closeRunLog(); });
    state().schedule.RunState = 0;
    callHost(u"EndProcess", {byRef(key_), byRef(state().stepCode)});
  }
  callHost(u"UnloadChild", {byRef(id_)});
}

void dlgFaultDisplay::userReleased() noexcept {
  const Entry entry(*this);
  if (DecrementCount() >= 1) return;
  if (alive() && state().runMode == RunMode::scheduledRun)
    attempt([&] { runLogLine(messageText(state(), message::runLetGo)); });
  attempt([&] { beginEnding(); });
  attempt([&] { FrmPositionSave(); });
  parent_.reset();
  Unload();
  endProcess();
}

// --- the host

void dlgFaultDisplay::callHost(std::u16string_view member,
                               std::initializer_list<automation::Argument> arguments) {
  const automation::ObjectRef host = parent_;  // it may let go of us while it is called
  if (!host || !hostMode()) return;
  try {
    automation::call(*host, member, arguments);
  } catch (const std::exception&) {
    // Whatever a host lacks or does, every further step still runs.
  }
}

void dlgFaultDisplay::hostMessage(std::u16string_view text) {
  callHost(u"ShowMessage", {byVal(std::u16string(text))});
}

void dlgFaultDisplay::hostCode(std::int32_t code) {
  callHost(u"ShowCode", {byVal(code)});
}

void dlgFaultDisplay::setParent(const automation::ObjectRef& host) {
  if (alive()) parent_ = host;
}

void dlgFaultDisplay::setPBXName(const std::u16string& name) {
  usePBXName(name, store::FaultStore::Report::box);
}

void dlgFaultDisplay::usePBXName(const std::u16string& name, store::FaultStore::Report report) {
  const Entry entry(*this);
  if (!alive()) return;
  pbxName_ = name;
  failure_.clear();  // it was about what was shown before
  store_.setExchangeName(name, report);
  if (!alive()) return;
  showNotice();
  model_.self().set(u"Caption", messageText(state(), message::windowTitle) + u" (" + name + u")");
  const std::u16string generation =
      pbx::GetMPGeneration(hostMode() ? automation::ObjectRef(parent_).get() : nullptr, name);
  if (!alive()) return;
  state().WideFaultFields = generation.empty() || generation > lastNarrowGeneration;
  showProcessorTexts();
}

void dlgFaultDisplay::showProcessorTexts() {
  const std::size_t number = state().WideFaultFields ? message::statusWide : message::statusNarrow;
  view().setStatus(window::processorPart, messageText(state(), number));
}

bool dlgFaultDisplay::visible() {
  return alive() && view().visible();
}

void dlgFaultDisplay::setVisible(bool visible) {
  const Entry entry(*this);
  if (!alive()) return;
  view().setVisible(visible);
  view().refresh();
}

void dlgFaultDisplay::FrmMove(const automation::ObjectRef& host) {
  const Entry entry(*this);
  if (!alive() || parent_) return;
  auto place = savedPlace(host);
  if (!alive()) return;
  if (!place) {
    const auto screen = view().screenSize();
    const auto own = view().windowSize();
    place = {(screen.width - own.width) / 2, (screen.height - own.height) / 2};
  }
  view().moveTo(place->first, place->second);
}

std::optional<std::pair<std::int32_t, std::int32_t>> dlgFaultDisplay::savedPlace(
    const automation::ObjectRef& host) {
  const auto pieces = GetJobParameter(host, u"MOVE");
  if (pieces.size() < 2) return std::nullopt;
  const auto left = coordinate(pieces[0]);
  const auto top = coordinate(pieces[1]);
  if (!left || !top) return std::nullopt;
  return std::pair(*left, *top);
}

void dlgFaultDisplay::FrmPositionSave() {
  const Entry entry(*this);
  if (!loaded_) return;
  const auto [left, top] = unloaded_ ? lastPlace_ : view().position();
  StoreJobParameter(u"MOVE", text::decimal(left) + u"," + text::decimal(top));
}

void dlgFaultDisplay::BackGround(std::int16_t index) {
  const Entry entry(*this);
  if (!alive() || !application_.LangDB || !application_.CommonLangDB) return;
  const auto& station = application_.station();
  comPicture::ApplyBackground(model_, *application_.LangDB, *application_.CommonLangDB, index,
                              state().BackGroundDir, station.files, station.pictures);
}

// --- boxes and the decoder

int dlgFaultDisplay::showBox(std::int16_t number, std::u16string_view substitution) {
  const auto& station = application_.station();
  comTools::BoxEnvironment boxes{application_.LangDB.get(), application_.CommonLangDB.get(), station.boxes,
                                 application_.runLog(), station.program.directory};
  comTools::BoxRequest request;
  request.number = number;
  if (!substitution.empty()) request.substitution = std::u16string(substitution);
  request.logOnly = application_.unattended();
  return comTools::ShowMsgBox(boxes, request);
}

const cFaultDisplay& dlgFaultDisplay::faultDecoder(bool wideFaultFields) {
  decoderWide_ = wideFaultFields;
  if (decoder_) return *decoder_;
  faultTexts_.setMessages(state().Messages);
  for (const KindList& list : kindLists) {
    std::vector<std::u16string> items;
    for (const auto& item : model_.control(list.name()).items()) items.push_back(item.text);
    faultTexts_.setList(list.kind, std::move(items));
  }
  decoder_ = std::make_unique<cFaultDisplay>(faultTexts_, decoderWide_);
  return *decoder_;
}

// --- the exchange server

automation::ObjectRef dlgFaultDisplay::caller() {
  return caller_;
}

void dlgFaultDisplay::CallBack(const automation::ObjectRef& response) {
  const Entry entry(*this);
  session_.CallBack(response);
}

int dlgFaultDisplay::askBeforeRequest() {
  return showBox(box::confirmRequest);
}

bool dlgFaultDisplay::logResponse(std::optional<std::int32_t> errorCode) {
  const cListRequest& copy = session_.response();
  return comSchedule::LogResponse(application_.runLog(), {errorCode, copy.Count(), [&](std::int32_t i) {
                                                            return comSchedule::LoggedEntry{
                                                                copy.CMD(i), copy.FirstData(i),
                                                                copy.SecondData(i), copy.ExtraData(i)};
                                                          }});
}

}  // namespace vordane

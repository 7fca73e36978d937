#include "startup/dlgFaultDisplay.h"

#include "language/comPicture.h"
#include "language/message_numbers.h"
#include "pbx/response_codes.h"
#include "startup/form_model.h"

namespace vordane {
namespace {

constexpr std::u16string_view lastNarrowGeneration = u"M";

struct Loader {
  std::u16string_view table;
  bool (*load)(window::Form&, database::Database&);
};
constexpr Loader loaders[] = {{u"tForms", comLanguage::LocaliseForm},
                              {u"tControls", comLanguage::LocaliseControls},
                              {u"tComboBoxDT", comLanguage::LoadComboLists},
                              {u"tSSGridsHD", comLanguage::LocaliseGridHeadings}};

}  // namespace

dlgFaultDisplay::dlgFaultDisplay(startup::Application& application)
    : application_(application),
      model_(startup::makeFormModel()),
      caller_(std::make_shared<startup::FormObject>(*this)),
      host_(application.state()),
      place_(application.station(), life_, host_),
      timer_(life_, application.station().view),
      status_(application.state()),
      faults_(application, model_, life_, host_, status_),
      receipts_(faults_, application.station().view, application.state(), application.station().clock,
                status_, application.station().program),
      store_(faults_, {model_, application.station().view, application.state(), application.station().clock,
                       status_, receipts_}),
      talk_(application, life_, host_, job_, timer_, status_, receipts_, caller_),
      session_(talk_, application.state()),
      parts_{application, model_,    life_,  host_, place_,   timer_, status_, job_,
             faults_,     receipts_, store_, talk_, session_, end_,   runs_,   actions_},
      end_(parts_),
      runs_(parts_),
      actions_(parts_),
      help_(application, life_, host_, status_),
      reading_(parts_, help_),
      input_(parts_, help_, reading_) {}

dlgFaultDisplay::~dlgFaultDisplay() {
  caller_->detach();
  store_.close();
  if (life_.drawn()) parts_.view().detach();
}

// --- load

void dlgFaultDisplay::Load() {
  const auto entry = enter();
  if (!life_.beginLoad()) return;
  parts_.view().attach(model_, input_);
  try {
    loadSteps();
  } catch (const std::exception&) {
    // The load stops where it is; CheckLoadError tells.
  }
}

void dlgFaultDisplay::loadSteps() {
  life_.forgetUsers();
  parts_.state().stepCode = step::loading;
  faults_.open();
  if (faults_.faultDatabase() == nullptr) {
    if (parts_.state().StandAlone) Unload();
    return;
  }
  store_.setSortFlags();
  if (!showExchanges() || !alive()) return;
  localise();
  life_.endLoad();
  parts_.state().runMode = RunMode::interactive;
  parts_.state().stepCode = step::loaded;
}

// False when the load goes no further. A host's creation waits for the load, perhaps with nobody there: it
// shows no box, and a database that can't be read is from then on as good as missing. A person sees one box.
bool dlgFaultDisplay::showExchanges() {
  using Report = store::FaultStore::Report;
  const bool standAlone = parts_.state().StandAlone;
  const bool shown = store_.FillExchangeList(standAlone ? Report::box : Report::quiet);
  if (!standAlone) {
    if (!shown) {
      store_.close();
      faults_.closeDatabase();
    }
    return shown;
  }
  if (!alive()) return false;
  const auto& station = application_.station();
  if (session_.createServer(station.files, station.settings, station.creator)) status_.exchangeIsSimulated();
  usePBXName(station.program.commandLine, shown ? Report::box : Report::quiet);
  return true;
}

// A loader that stops leaves the window usable: the status line names its table.
void dlgFaultDisplay::localise() {
  database::Database& language = *application_.LangDB;
  for (const Loader& loader : loaders)
    if (!loader.load(model_, language)) textsStopped(loader.table);
  // Rows shown while loading may have asked for the decoder before its lists were there.
  faults_.textsLoaded();
  help_.load(model_, language);
  status_.loaded();
  status::showLine(parts_.view(), status_);
}

void dlgFaultDisplay::textsStopped(std::u16string_view table) {
  status_.textsStopped(table);
  application_.events().fileFailed(platform::Event::textsIncomplete, application_.ownTextsPath(), table);
}

void dlgFaultDisplay::CallBack(const automation::ObjectRef& response) {
  const auto entry = enter();
  session_.CallBack(response);
}

// --- what layers and hosts set

void dlgFaultDisplay::setParent(const automation::ObjectRef& host) {
  if (alive()) host_.set(host);
}

void dlgFaultDisplay::setPBXName(const std::u16string& name) {
  usePBXName(name, store::FaultStore::Report::box);
}

void dlgFaultDisplay::usePBXName(const std::u16string& name, store::FaultStore::Report report) {
  const auto entry = enter();
  if (!alive()) return;
  host_.setPBXName(name);
  status_.otherExchange();
  store_.setExchangeName(name, report);
  if (!alive()) return;
  parts_.showNotice();
  reading_.nameTitle(name);
  model_.self().set(u"Caption", parts_.text(message::windowTitle) + u" (" + name + u")");
  const automation::ObjectRef host = parts_.state().StandAlone ? nullptr : host_.ref();
  const std::u16string generation = pbx::GetMPGeneration(host.get(), name);
  if (!alive()) return;
  parts_.state().WideFaultFields = generation.empty() || generation > lastNarrowGeneration;
  parts_.showProcessorTexts();
}

bool dlgFaultDisplay::visible() {
  return alive() && parts_.view().visible();
}

void dlgFaultDisplay::setVisible(bool visible) {
  const auto entry = enter();
  if (!alive()) return;
  if (visible) reading_.begin();
  parts_.view().setVisible(visible);
  parts_.view().refresh();
}

void dlgFaultDisplay::BackGround(std::int16_t index) {
  const auto entry = enter();
  if (!alive() || !application_.LangDB || !application_.CommonLangDB) return;
  const auto& station = application_.station();
  comPicture::ApplyBackground(model_, *application_.LangDB, *application_.CommonLangDB, index,
                              parts_.state().BackGroundDir, station.files, station.pictures);
}

}  // namespace vordane

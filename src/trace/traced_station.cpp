#include "trace/traced_station.h"

#include <cstdlib>
#include <random>
#include <utility>

#include "settings/comRegQuil32.h"
#include "startup/dlgFaultDisplay.h"
#include "text/numbers.h"

namespace vordane::trace {
namespace {

// Eight hexadecimal digits that no other process has.
std::string processMark() {
  std::string mark;
  for (std::uint32_t bits = std::random_device()(); mark.size() < 8; bits >>= 4U)
    mark += "0123456789abcdef"[bits & 15U];
  return mark;
}

std::u16string versionOf(const platform::Program& program) {
  return text::decimal(program.major) + u"." + text::decimal(program.minor) + u"." +
         text::decimal(program.revision);
}

}  // namespace

std::shared_ptr<Recorder> record(std::unique_ptr<Folder> folder, const Wish& wish, Clock clock,
                                 std::size_t ringBytes) {
  auto writer =
      std::make_unique<Writer>(TraceFiles(std::move(folder), wish.limits, processMark()), clock, ringBytes);
  return std::make_shared<Recorder>(std::move(writer), std::move(clock), wish.identifiers);
}

class TracedStation::Boxes final : public platform::MessageBoxes {
 public:
  Boxes(std::shared_ptr<Recorder> recorder, platform::MessageBoxes& boxes)
      : recorder_(std::move(recorder)), boxes_(boxes) {}
  int show(const platform::MessageBoxRequest& request) override {
    const auto recorder = recorder_;
    const std::int64_t number = recorder->next();
    const Moment began = recorder->now();
    recorder->tell("box", [&](Line& line) {
      line.number("number", number).text("prompt", request.prompt).text("title", request.title);
      line.number("style", request.style);
    });
    const int answer = boxes_.show(request);
    recorder->tell("box answer", [&](Line& line) {
      line.number("number", number).number("took", recorder->now() - began).number("answer", answer);
    });
    return answer;
  }

 private:
  std::shared_ptr<Recorder> recorder_;
  platform::MessageBoxes& boxes_;
};

class TracedStation::Creator final : public platform::ObjectCreator {
 public:
  Creator(std::shared_ptr<TracedObjects> objects, platform::ObjectCreator& creator)
      : objects_(std::move(objects)), creator_(creator) {}
  automation::ObjectRef create(std::u16string_view progId) override {
    try {
      auto object = objects_->inwards(creator_.create(progId));
      objects_->recorder().tell("created", [&](Line& line) {
        line.text("class", progId).number("object", object ? objects_->recorder().numberOf(*object) : 0);
      });
      return object;
    } catch (const automation::AutomationError& failure) {
      objects_->recorder().tell("not created", [&](Line& line) {
        line.text("class", progId).word("error", hexadecimal(failure.code()));
        line.text("description", failure.description());
      });
      throw;
    }
  }

 private:
  std::shared_ptr<TracedObjects> objects_;
  platform::ObjectCreator& creator_;
};

class TracedStation::Life final : public platform::Process {
 public:
  Life(std::shared_ptr<TracedObjects> objects, platform::Process& process)
      : objects_(std::move(objects)), process_(process) {}
  void setCallTimes(const platform::CallTimes& times) override { process_.setCallTimes(times); }
  void stopServing() override {
    tell("stops serving");
    process_.stopServing();
  }
  void end() override {
    tell("ends");
    process_.end();
  }
  [[noreturn]] void endAtOnce() override {
    tell("ends at once");
    objects_->recorder().flush();
    process_.endAtOnce();
    std::abort();  // not reached
  }
  // Others hold the layer by what stands in front of it.
  void watchHost(automation::Object& layer, const automation::ObjectRef& host) override {
    process_.watchHost(objects_->heldOf(layer), objects_->outwards(host));
  }

 private:
  void tell(std::string_view event) {
    objects_->recorder().tell(event, [](Line&) {});
  }

  std::shared_ptr<TracedObjects> objects_;
  platform::Process& process_;
};

TracedStation::TracedStation(const startup::Workstation& station, std::shared_ptr<Recorder> recorder)
    : plain_(station),
      recorder_(std::move(recorder)),
      objects_(std::make_shared<TracedObjects>(recorder_)),
      boxes_(std::make_unique<Boxes>(recorder_, plain_.boxes)),
      creator_(std::make_unique<Creator>(objects_, plain_.creator)),
      life_(std::make_unique<Life>(objects_, plain_.process)),
      engine_(recorder_, plain_.engine),
      view_(recorder_, plain_.view) {
  recorder_->tell("start", [&](Line& line) {
    const platform::Program& program = plain_.program;
    line.number("format", 1).text("version", versionOf(program)).flag("hosted", program.startedByAutomation);
    line.flag("interactive", program.interactive).text("exchange", program.commandLine);
    line.number("words", static_cast<std::int64_t>(8 * sizeof(void*)));
  });
}

TracedStation::~TracedStation() {
  recorder_->tell("end", [](Line&) {});
  recorder_->flush();
}

startup::Workstation TracedStation::station() {
  return {plain_.settings, plain_.clock, plain_.files,    *creator_, *boxes_,       plain_.documents,
          engine_,         view_,        plain_.pictures, *life_,    plain_.events, plain_.program};
}

void TracedStation::watch(startup::Application& application) {
  view_.setDue([&application] { return application.form().timer().due(); });
}

std::unique_ptr<TracedStation> traceAsWished(const startup::Workstation& plain,
                                             platform::SettingsStore& workstationSettings) {
  const auto wish = wishOf(plain.settings, workstationSettings);
  if (!wish) return nullptr;
  std::u16string folder = wish->folder;
  const comRegQuil32::Installation installation{plain.settings, plain.program.directory};
  if (folder.empty())
    folder = comRegQuil32::GetInstallPath(installation, u"Addins", u"REGDBOFQUIL32") + u"TRACE";
  try {
    return std::make_unique<TracedStation>(plain, record(diskFolder(folder), *wish));
  } catch (const std::exception&) {
    return nullptr;
  }
}

}  // namespace vordane::trace

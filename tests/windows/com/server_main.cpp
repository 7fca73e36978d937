// The server program of the tests: serves the probe and the bag, as VORDANE.EXE serves its classes. What it
// was told at the end is written to the file that stands in the registry value Software\VordaneProbe, Log.
#include <windows.h>

#include <memory>

#include "platform/command_line.h"
#include "platform/windows/com/class_server.h"
#include "platform/windows/services/services.h"
#include "probe.h"

namespace vordane::test {
namespace {

registration::Server description() {
  registration::Server server = registration::serverOf(windows::executablePath(), probeLibrary());
  server.eventSource = u"VordaneProbe";
  return server;
}

// Like the add-in's layer: the last probe's release says good-bye to its host and ends the process.
class Layers {
 public:
  explicit Layers(com::ClassServer& server) : server_(server) {}

  automation::ObjectRef create() {
    const com::Handle ends(OpenEventW(SYNCHRONIZE, FALSE, L"VordaneProbeEndsAtOnce"));
    if (ends) server_.endAtOnce();
    makeAsTold();
    ++count_;
    auto probe = std::make_shared<Probe>(&server_, nullptr);
    return automation::ObjectRef(new Holder(probe, *this), [](automation::Object* object) { delete object; });
  }

 private:
  // Ends with the outside world's last hold; the probe inside still has its host then.
  class Holder : public automation::TableObject {
   public:
    Holder(std::shared_ptr<Probe> probe, Layers& layers) : probe_(std::move(probe)), layers_(layers) {}
    ~Holder() override { layers_.released(*probe_); }
    const automation::ClassTable& table() const override { return probeTable(); }

   protected:
    automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                   std::span<automation::Argument> arguments) override {
      if (static_cast<ProbeMember>(member) == ProbeMember::isSame)
        return automation::toObject(arguments[0].value).get() == this;
      if (static_cast<ProbeMember>(member) == ProbeMember::watch) {
        probe_->host = automation::toObject(arguments[0].value);
        layers_.server_.watchHost(*this, probe_->host);
        return {};
      }
      return static_cast<automation::TableObject&>(*probe_).invoke(member, kind, arguments);
    }

   private:
    std::shared_ptr<Probe> probe_;
    Layers& layers_;
  };

  // A test that holds these events decides how long a creation takes and how it ends.
  static void makeAsTold() {
    const com::Handle making(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"VordaneProbeMaking"));
    const com::Handle goOn(OpenEventW(SYNCHRONIZE, FALSE, L"VordaneProbeGoOn"));
    if (making && goOn) {
      SetEvent(making.get());
      com::serveMessagesUntil([&] { return WaitForSingleObject(goOn.get(), 0) == WAIT_OBJECT_0; }, 30000);
    }
    const com::Handle refused(OpenEventW(SYNCHRONIZE, FALSE, L"VordaneProbeRefused"));
    if (refused) throw automation::AutomationError(automation::error::runTime(7), u"refused");
  }

  void released(Probe& probe) {
    const com::Handle heard(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"VordaneProbeReleased"));
    if (heard) SetEvent(heard.get());
    if (--count_ > 0) return;
    server_.stopServing();
    if (probe.host) {
      try {
        automation::call(*probe.host, u"GoodBye", {automation::byVal(probe.text)});
      } catch (const automation::AutomationError&) {
      }
    }
    probe.host = nullptr;
    server_.end();
  }

  com::ClassServer& server_;
  int count_ = 0;
};

int run() {
  const platform::CommandLine line =
      platform::parseCommandLine(platform::withoutProgramName(com::fromWide(GetCommandLineW())));
  if (const auto asked = windows::registerAsAsked(line, description())) return *asked;
  com::Apartment apartment;
  com::ClassServer server(apartment);
  Layers layers(server);
  server.serve({{std::string(probeTable().clsid), [&] { return layers.create(); }, true},
                {std::string(bagTable().clsid), [] { return automation::ObjectRef(std::make_shared<Bag>()); },
                 false}});
  return com::runMessageLoop();
}

}  // namespace
}  // namespace vordane::test

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  return vordane::test::run();
}

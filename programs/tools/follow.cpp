// vordane-tools follow: tells each new fault and lamp once.
#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "console.h"
#include "database_files.h"
#include "following.h"
#include "language_source.h"
#include "lasting_file.h"
#include "network.h"
#include "outlets.h"
#include "platform/engine_choice.h"
#include "platform/file_moves.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using std::chrono::seconds;

constexpr int mostAtOnce = 256;  // faults of one read
constexpr seconds longestPause{60};

struct Options {
  std::string file;
  std::string mark;
  std::optional<std::string> to, udp, tcp;
  std::optional<long> every, enterprise;
  bool syslog = false, once = false, fromNow = false;
};

class Follow {
 public:
  explicit Follow(const Options& given)
      : given_(given),
        mark_(toPath(given.mark)),
        outlet_(makeOutlet()),
        following_(
            given.file,
            [this](std::int64_t behind, std::int64_t witness) {
              return readFeed(toPath(given_.file).u16string(), behind, witness, mostAtOnce);
            },
            [this](const FollowMark& mark) { keepMark(mark_, mark); }, *outlet_) {}

  int run() {
    requireEmbedded();
    std::filesystem::path lock = mark_;
    lock += ".lock";
    const auto alone = takeSoleUse(lock);
    if (!alone)
      throw ToolError(text::toUtf8(lock.u16string()) +
                      ": another 'follow' has this mark, or its folder may not be written. End that one, or "
                      "name another mark");
    begin();
    if (given_.once) return tellAll(), 0;
    for (;;) platform::sleepFor(tryAll());
  }

 private:
  // A store's numbers come from many stations and are not seen in their order, and Access files are read
  // only where their engine is.
  void requireEmbedded() const {
    switch (database::fileKind(toPath(given_.file).u16string())) {
      case database::FileKind::dataSource:
        throw ToolError(
            given_.file +
            ": this names a store on a server, which 'follow' can't follow: its faults are not seen "
            "in the order of their numbers. Use 'vordane-tools list --json'");
      case database::FileKind::access:
        throw ToolError(
            given_.file +
            ": this is an Access file, which 'follow' can't follow. Use 'vordane-tools list --json', "
            "or bring the suite over with 'vordane-tools import'");
      default:
        break;
    }
  }

  std::unique_ptr<Outlet> makeOutlet() {
    if (given_.to) return std::make_unique<FileOutlet>(toPath(*given_.to));
    if (given_.udp) return network(*given_.udp, Transport::udp);
    if (given_.tcp) return network(*given_.tcp, Transport::tcp);
    useBinaryStandardStreams();
    if (!given_.syslog)
      return std::make_unique<StreamOutlet>(std::cout, [](const Event& event) { return jsonOf(event); });
    return std::make_unique<StreamOutlet>(std::cout, [this](const Event& event) {
      return syslogOf(event, origin(), SyslogOutlet::longestOverTcp);
    });
  }

  std::unique_ptr<Outlet> network(const std::string& written, Transport transport) {
    const auto address = addressOf(written);
    if (!address) throw ToolError(written + ": this is no address. Write it as HOST:PORT, or [IPv6]:PORT");
    return std::make_unique<SyslogOutlet>(*network_, *address, transport, [this] { return origin(); });
  }

  SyslogOrigin origin() {
    SyslogOrigin all{network_->hostName(), 32473, utcNow()};
    if (given_.enterprise) all.enterprise = *given_.enterprise;
    return all;
  }

  void begin() try {
    const auto kept = readMark(mark_);
    !kept&& given_.fromNow ? following_.beginFromNow(newMark()) : following_.begin(kept.value_or(newMark()));
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(given_.file, failure));
  }

  void tellAll() try {
    while (following_.round()) continue;
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(given_.file, failure));
  } catch (const NotTold& failure) {
    throw ToolError(failure.what());
  }

  // Answers how long to wait. What may pass is said once and tried again, more and more seldom.
  std::chrono::milliseconds tryAll() {
    try {
      tellAll();
      if (!trouble_.empty()) std::cerr << "vordane-tools: it goes on\n";
      trouble_.clear();
      pause_ = seconds(std::max(given_.every.value_or(2), 1L));
    } catch (const ForeignMark&) {
      throw;
    } catch (const ToolError& failure) {
      if (!std::cout) throw;
      if (trouble_ != failure.what()) std::cerr << "vordane-tools: " << failure.what() << '\n';
      trouble_ = failure.what();
      pause_ = std::min(std::max(2 * pause_, seconds(1)), longestPause);
    }
    return pause_;
  }

  const Options& given_;
  const std::filesystem::path mark_;
  const std::unique_ptr<Network> network_ = systemNetwork();
  std::unique_ptr<Outlet> outlet_;
  Following following_;
  std::string trouble_;  // what was said last, while it lasts
  seconds pause_{0};
};

}  // namespace

void declareFollow(options::Command& command) {
  const auto given = std::make_shared<Options>();
  command.argument("FAULT.MDB", given->file, "the fault database");
  command.option("--mark", "FILE", given->mark,
                 "where it keeps how far it has told; it goes on from there when it is started again");
  command.option("--to", "FILE", given->to, "JSON lines at the end of this file, each event once");
  command.flag("--syslog", given->syslog, "syslog messages (RFC 5424) in place of JSON lines");
  command.option("--udp", "HOST:PORT", given->udp, "syslog messages to a server, one in a datagram");
  command.option("--tcp", "HOST:PORT", given->tcp,
                 "syslog messages to a server, with octet counting; each at least once, with the same id");
  command.option("--enterprise", "NUMBER", given->enterprise,
                 "the enterprise number of the structured data in syslog messages; 32473 without it");
  command.flag("--from-now", given->fromNow, "a new mark leaves out the faults that are stored already");
  command.flag("--once", given->once, "ends when all is told");
  command.option("--every", "SECONDS", given->every, "how often it looks; every 2 seconds without it");
  command.exactlyOne({"--mark"});
  command.oneAtMost({"--to", "--syslog", "--udp", "--tcp"});
  command.notes(
      "Without --to, --udp and --tcp it tells to its output. The lamps of an exchange are told when they are "
      "first seen and when they have changed, as they are then. A new mark tells everything that is stored.");
  command.runs([given] { return Follow(*given).run(); });
}

}  // namespace vordane::tools

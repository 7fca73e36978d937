// The whole window over a store on the test's own server.
#pragma once

#include <string>
#include <vector>

#include "odbc/server_store.h"
#include "platform/odbc/library.h"
#include "startup/story.h"

namespace vordane::startup {

class ServerStory : public Story {
 protected:
  ServerStory() : store_(odbc::makeStore(database::Layout::faults)) { useServer({}, sources_.write(store_)); }
  // From the next start on.
  void useServer(const odbc::Options& options, const std::filesystem::path& source) {
    engine.server = odbc::makeEngine(databases, odbc::systemLibrary(), options);
    std::filesystem::copy_file(source, engine.file(u"FAULT.MDB"),
                               std::filesystem::copy_options::overwrite_existing);
  }
  ~ServerStory() override { layer.reset(); }

  // Asks for the list, gets it, and tells the lamps.
  void fetch(const std::vector<std::u16string>& entries, std::u16string lamps = u"00") {
    pressAndTick(0);
    exchange().answer(0, entries);
    tick();
    exchange().answerLamps(lamps);
    tick();
  }
  std::vector<std::u16string> faults(int first, int count) {
    std::vector<std::u16string> entries;
    for (int i = first; i < first + count; ++i)
      for (const std::u16string& entry :
           {std::u16string(u"15 MJ MP000"), u"26/11/20 10:" + text::decimalPadded(i % 60, 2),
            u"0" + text::decimal(i % 10) + u" " + text::decimalPadded(i / 10, 2), std::u16string()})
        entries.push_back(entry);
    return entries;
  }
  std::string ask(const std::string& question) {
    return text::toUtf8(odbc::connectTo(store_)->query(question).at(0).at(0).value_or(u"Null"));
  }

  odbc::DataSources sources_;
  std::string store_;
};

}  // namespace vordane::startup

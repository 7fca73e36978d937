// A night in fast motion: one unattended job of many runs, then many jobs of one run with an add-in of their
// own each. Memory and handles of the three programs stay flat, the log keeps to its limit, the database is
// sound and holds each fault once, and no process stays behind.
//
// VORDANE_NIGHT_RUNS (usual 40, a multiple of 4) and VORDANE_NIGHT_JOBS (usual 4, likewise) say how many; the
// long form is VORDANE_NIGHT_RUNS=1000 VORDANE_NIGHT_JOBS=100, see docs/reliability.md.
#include <algorithm>
#include <iostream>
#include <map>

#include "../rounds/measuring.h"
#include "library/installed_suite.h"
#include "library/run_log.h"

namespace vordane::suite {
namespace {

constexpr int logThousands = 20;

// A multiple of four, as the exchange's answers come in fours.
int wanted(const wchar_t* name, int usual) {
  const int number = static_cast<int>(std::wcstol(variable(name).c_str(), nullptr, 10));
  return number <= 0 ? usual : number / 4 * 4;
}

std::string script(int jobs) {
  return "quiet\npbx create\ncreate\nregister NIGHT 1\nshow\nrun 11\nwait EndProcess within forever\n"
         "wait UnloadChild within 60000\nrelease\nloud\nnote the long job is over\nquiet\nrepeat " +
         std::to_string(jobs) +
         "\ncreate\nregister NIGHT 1\nrun 12\nwait EndProcess within 120000\n"
         "wait UnloadChild within 60000\nrelease\nend\nloud\nnote the short jobs are over\n";
}

int asked(const std::string& what) {
  return static_cast<int>(logged("SendRequest " + what + " = \"ACC"));
}

using Samples = std::map<std::wstring, std::vector<test::Holding>>;
const std::wstring watched[] = {L"VORDANE.EXE", L"Zulsim.exe", L"devhost.exe"};

void sample(Samples& samples) {
  for (const std::wstring& program : watched) {
    const auto running = suitePrograms(program);
    if (running.size() != 1) continue;
    const test::Holding now = test::holdingOf(test::openProcess(running.front()).get());
    if (now.handles > 0 && now.privateBytes > 0) samples[program].push_back(now);
  }
}

// What the programs hold at each request of the long job, at most about 160 times.
Samples watchLongJob(const Host& host, int runs) {
  Samples samples;
  int seen = 0;
  const int step = std::max(1, runs / 160);
  while (seen + step < runs) {
    await("the next run", [&] { return asked("LEA0") >= seen + step || !host.runs(); });
    if (!host.runs()) throw Failure("the host ended in its long job:\n" + host.trace());
    seen = asked("LEA0");
    sample(samples);
  }
  return samples;
}

// What lasts does not grow: it falls in its last third to where it was in the second, with `spare`. The
// lowest counts, since a run under way holds handles and memory for its time; the first third is the warming
// up. The spare memory is for threads: one is made when more calls meet than ever before, and its stack of 1
// MB stays. What a run leaves behind shows in a long night, whose thirds are hundreds of runs apart.
void expectFlat(const std::vector<std::size_t>& values, std::size_t spare, const std::string& what) {
  const std::size_t third = values.size() / 3;
  ASSERT_GT(third, 0U) << "too little was measured: " << what;
  const auto at = [&](std::size_t i) { return values.begin() + static_cast<std::ptrdiff_t>(i); };
  const std::size_t early = *std::min_element(at(third), at(2 * third)),
                    late = *std::min_element(at(2 * third), values.end());
  std::cout << what << " went from " << early << " to " << late << " (" << values.size() << " samples)\n";
  EXPECT_LE(late, early + spare) << what;
}

void expectAllFlat(const Samples& samples) {
  for (const std::wstring& program : watched) {
    const auto found = samples.find(program);
    ASSERT_NE(found, samples.end()) << utf8(program);
    std::vector<std::size_t> handles, kilobytes;
    for (const test::Holding& holding : found->second) {
      handles.push_back(holding.handles);
      kilobytes.push_back(holding.privateBytes / 1024);
    }
    expectFlat(handles, 10, "handles of " + utf8(program));
    expectFlat(kilobytes, 12000, "private kilobytes of " + utf8(program));
  }
}

class Night : public InstalledSuite {};

TEST_F(Night, NothingGrowsAndNothingIsLost) {
  const int runs = wanted(L"VORDANE_NIGHT_RUNS", 40), jobs = wanted(L"VORDANE_NIGHT_JOBS", 4);
  useScenario(L"fast-night");
  keepLog();
  addJob({.key = 11, .errorStop = false, .runs = runs, .log = "NIGHT", .thousands = logThousands});
  addJob({.key = 12, .errorStop = false, .runs = 1, .log = "NIGHT", .thousands = logThousands});
  const Host host("night", script(jobs));
  expectAllFlat(watchLongJob(host, runs));
  host.awaitLine("# the long job is over");

  const auto log = findRunLog("NIGHT11");
  ASSERT_TRUE(log);
  EXPECT_LE(std::filesystem::file_size(*log), logThousands * 1000U + 200U);
  EXPECT_NE(readText(*log).find("No list received: the exchange answered with error 60"), std::string::npos);

  EXPECT_EQ(host.wait(), 0) << host.trace();
  awaitGone();
  EXPECT_EQ(asked("LEA0"), runs + jobs);
  EXPECT_EQ(asked("EA1/00"), (runs + jobs) / 4 * 3) << "acknowledged";
  EXPECT_EQ(integrity(layout().faults()), "ok");
  const auto count = [](const std::string& from) {
    return sql(layout().faults(), "SELECT count(*) FROM " + from);
  };
  EXPECT_EQ(count("FaultDisplay f WHERE NOT EXISTS "
                  "(SELECT 1 FROM VordaneFaultIndex x WHERE x.Count = f.Count AND x.ID = f.ID)"),
            "0")
      << "faults without a place in the index";
  EXPECT_EQ(count("(SELECT 1 FROM FaultDisplay GROUP BY ID, Fault, Alarm, CPU, Date, Description "
                  "HAVING count(*) > 1)"),
            "0")
      << "faults stored twice";
  EXPECT_EQ(count("PBXList"), "1");
  EXPECT_EQ(stored(), 6);
}

}  // namespace
}  // namespace vordane::suite

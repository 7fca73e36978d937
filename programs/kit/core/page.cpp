// The report as a page: one file, readable without a network, that can be filled in, printed and sent.
#include <string_view>

#include "kit/core/report.h"

namespace vordane::kit {
namespace {

constexpr std::string_view style = R"(
:root { color-scheme: light dark; --line: #8886; --good: #1a7f37; --bad: #c0392b; --quiet: #777; }
body { font: 15px/1.5 "Segoe UI", system-ui, sans-serif; max-width: 72em; margin: 2em auto; padding: 0 1em; }
h1 { font-size: 1.6em; margin-bottom: 0; } h2 { font-size: 1.2em; margin: 2em 0 .5em; }
.verdict { font-size: 1.2em; font-weight: 600; margin: .3em 0 1em; }
.good { color: var(--good); } .bad { color: var(--bad); } .quiet { color: var(--quiet); }
table { border-collapse: collapse; width: 100%; } th, td { text-align: left; vertical-align: top; padding: .3em .7em;
border-bottom: 1px solid var(--line); } th { font-weight: 600; } td.n, th.n { text-align: right; }
table.system { width: auto; } pre { margin: .4em 0; padding: .6em .8em; border-left: 3px solid var(--line);
white-space: pre-wrap; overflow-wrap: anywhere; font: 13px/1.4 Consolas, "DejaVu Sans Mono", monospace; }
pre .minus { color: var(--bad); } pre .plus { color: var(--good); }
details { margin: .4em 0; } summary { cursor: pointer; } code { font-family: Consolas, "DejaVu Sans Mono", monospace; }
.fill { min-width: 9em; background: #8881; } @media print { details { display: none; } .fill { background: none; } }
)";

// A page that was filled in is kept by the browser as it looks then.
constexpr std::string_view keep = R"(<p><button onclick="
const a = document.createElement('a');
a.href = URL.createObjectURL(new Blob(['<!DOCTYPE html>' + document.documentElement.outerHTML], {type: 'text/html'}));
a.download = 'vordane-report.html'; a.click();">Keep the page with what was filled in</button></p>
)";

std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : text) switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '&':
        out += "&amp;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  return out;
}

// Markdown's `code` and *stress* within a cell.
std::string rich(std::string_view markdown) {
  std::string out;
  bool code = false;
  for (const char c : markdown) {
    if (c == '`') {
      out += code ? "</code>" : "<code>";
      code = !code;
    } else {
      out += escaped(std::string_view(&c, 1));
    }
  }
  return code ? out + "</code>" : out;
}

std::string seconds(long long milliseconds) {
  return std::to_string(milliseconds / 1000) + '.' + std::to_string(milliseconds / 100 % 10) + " s";
}

// A failure's words; lines of a difference are coloured.
std::string outputHtml(std::string_view text) {
  std::string out = "<pre>";
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    const bool minus = line.starts_with('-');
    const bool plus = line.starts_with('+');
    if (minus || plus) out += minus ? "<span class=minus>" : "<span class=plus>";
    out += escaped(line);
    if (minus || plus) out += "</span>";
    out += '\n';
    text = end == text.npos ? std::string_view{} : text.substr(end + 1);
  }
  return out + "</pre>\n";
}

// Cells from position `numbers` on stand to the right.
std::string row(std::initializer_list<std::string> cells, std::size_t numbers = 99,
                std::string_view tag = "td") {
  std::string out = "<tr>";
  std::size_t i = 0;
  for (const std::string& cell : cells) {
    out += '<' + std::string(tag) + (i >= numbers ? " class=n>" : ">") + cell + "</" + std::string(tag) + '>';
    ++i;
  }
  return out + "</tr>\n";
}
std::string heads(std::initializer_list<std::string> cells, std::size_t numbers = 99) {
  return row(cells, numbers, "th");
}

std::string stateOf(const ProgramResult& program) {
  if (program.notHere) return "<span class=quiet>not on this system</span>";
  if (program.brokenOff) return "<span class=bad>broken off</span>";
  return program.failures() == 0 ? "<span class=good>passed</span>" : "<span class=bad>failed</span>";
}

std::string programsHtml(const Report& report) {
  std::string out = "<h2>Programs</h2>\n<table>\n" +
                    heads({"Program", "Result", "Passed", "Failed", "Skipped", "Left out", "Time"}, 2);
  for (const ProgramResult& program : report.programs) {
    const Sums sums = sumsOf(program);
    out += row({escaped(program.program.words + ' ' + program.program.name), stateOf(program),
                std::to_string(sums.passed), std::to_string(program.failures()), std::to_string(sums.skipped),
                std::to_string(sums.held), seconds(program.milliseconds)},
               2);
  }
  return out + "</table>\n";
}

std::string failuresHtml(const Report& report) {
  std::string out;
  for (const ProgramResult& program : report.programs) {
    const std::string name = program.program.words + ' ' + program.program.name;
    if (!program.problem.empty() && !program.notHere)
      out += "<h3>" + escaped(name) + "</h3>\n" + outputHtml(program.problem);
    for (const TestResult& test : program.tests)
      if (test.result == Result::failed || test.result == Result::broken)
        out += "<h3>" + escaped(name) + ": " + escaped(test.name) + " <span class=bad>" +
               std::string(nameOf(test.result)) + "</span></h3>\n" + outputHtml(test.output);
  }
  return out.empty() ? out : "<h2>What failed</h2>\n" + out;
}

// Each line of `what` with its reason, below one heading.
template <class Each>
std::string listHtml(std::string_view heading, const Report& report, Each each) {
  std::string rows;
  for (const ProgramResult& program : report.programs)
    each(program, [&](const std::string& test, const std::string& reason) {
      rows +=
          row({escaped(program.program.words + ' ' + program.program.name), escaped(test), escaped(reason)});
    });
  if (rows.empty()) return {};
  return "<h2>" + std::string(heading) + "</h2>\n<table>\n" + heads({"Program", "Test", "Why"}) + rows +
         "</table>\n";
}

std::string lastLine(std::string text) {
  while (text.ends_with('\n')) text.pop_back();
  return text.substr(text.rfind('\n') + 1);
}

std::string notRunHtml(const Report& report) {
  return listHtml("Left out here", report,
                  [](const ProgramResult& program, const auto& take) {
                    if (program.notHere) take("all", program.problem);
                    for (const HeldTest& test : program.held) take(test.name, test.reason);
                  }) +
         listHtml("Skipped by the tests themselves", report,
                  [](const ProgramResult& program, const auto& take) {
                    for (const TestResult& test : program.tests)
                      if (test.result == Result::skipped) take(test.name, lastLine(test.output));
                  });
}

std::string allHtml(const Report& report) {
  std::string out = "<h2>Every test</h2>\n";
  for (const ProgramResult& program : report.programs) {
    if (program.tests.empty()) continue;
    out += "<details><summary>" + escaped(program.program.words + ' ' + program.program.name) + ", " +
           std::to_string(program.tests.size()) + " tests</summary>\n<table>\n";
    for (const TestResult& test : program.tests)
      out += row(
          {escaped(test.name), std::string(nameOf(test.result)), std::to_string(test.milliseconds) + " ms"},
          2);
    out += "</table></details>\n";
  }
  return out;
}

std::string checklistHtml(const Report& report) {
  std::string out =
      "<h2>By hand</h2>\n<p>What no program can look at. Click into the cells on the right to fill them "
      "in.</p>\n<table>\n" +
      heads({"No.", "What to do", "What must happen", "Result", "By whom, when"});
  for (const Check& check : report.checklist)
    out += "<tr><td>" + escaped(check.number) + "<td>" + rich(check.deed) + "<td>" + rich(check.outcome) +
           "<td class=fill contenteditable><td class=fill contenteditable></tr>\n";
  return out + "</table>\n" + std::string(keep);
}

std::string systemHtml(const Report& report) {
  std::string out = "<table class=system>\n";
  for (const auto& [name, value] : report.system) out += row({escaped(name), escaped(value)});
  out += row({"Begun", escaped(report.begun)}) + row({"Ended", escaped(report.ended)});
  return out +
         row({"Registration", "<span class=" + std::string(report.putBackDone ? "good>" : "bad>") +
                                  escaped(report.putBack) + "</span>"}) +
         "</table>\n";
}

}  // namespace

std::string htmlText(const Report& report) {
  const bool good = allPassed(report);
  return "<!DOCTYPE html>\n<html lang=en><head><meta charset=utf-8><title>Vordane " +
         escaped(report.version) + " on Windows</title>\n<style>" + std::string(style) +
         "</style></head>\n<body>\n<h1>Vordane " + escaped(report.version) +
         " on Windows</h1>\n<p class=\"verdict " +
         (good               ? "good\">Everything passed"
          : report.brokenOff ? "bad\">Broken off"
                             : "bad\">Not everything passed") +
         ".</p>\n<p>" + escaped(summaryOf(report)) + ".</p>\n" + systemHtml(report) + failuresHtml(report) +
         programsHtml(report) + checklistHtml(report) + notRunHtml(report) + allHtml(report) +
         "</body></html>\n";
}

}  // namespace vordane::kit

#include "library/host.h"

#include <regex>

#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace {

// A script lies beside the scenario, so that both mean the same words.
Path scriptFile(const std::string& name) {
  return layout().exchange / (name + ".txt");
}

Path provided(const std::string& name) {
  copyFile(layout().tests() / "host" / (name + ".txt"), scriptFile(name));
  return scriptFile(name);
}

Path written(const std::string& name, const std::string& lines) {
  writeText(scriptFile(name), lines);
  return scriptFile(name);
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
  return text;
}

// As a trace writes a path, with each backslash twice.
std::string traced(const Path& path) {
  return replaced(utf8(path), "\\", "\\\\");
}

std::string capitals(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

}  // namespace

Host::Host(const std::string& name, Program::Station station)
    : program_(layout().host(), {provided(name).wstring()}, layout().exchange, station) {}

Host::Host(const std::string& name, const std::string& lines)
    : program_(layout().host(), {written(name, lines).wstring()}, layout().exchange) {}

void Host::awaitLine(std::string_view beginning, std::size_t times) const {
  if (!program_.output().await(beginning, times))
    throw Failure(program_.output().text() + "no line '" + std::string(beginning) + "', " +
                  std::to_string(times) + " times");
}

void Host::pressRequest(const std::string& exchange) const {
  awaitLine(exchange.empty() ? "# READY" : "# READY " + exchange);
  Window(&program_).press(L"cmdRequest");
}

std::string Host::trace() const {
  program_.wait();
  program_.output().await("\n");  // the pipe's end
  return program_.output().text();
}

std::string masked(std::string_view trace) {
  static const std::regex identifier("(SIM|ACCEPTED)-[0-9]+");
  static const std::regex place("(\"MOVE\" )\"-?[0-9.]+,-?[0-9.]+\"");
  const std::string text =
      std::regex_replace(std::regex_replace(std::string(trace), identifier, "$1-N"), place, "$1\"LEFT,TOP\"");
  // The add-in writes its own path in capitals.
  const std::string root = "C:\\\\QUILMAR32\\\\30000", own = traced(layout().root);
  return replaced(replaced(text, own, root), capitals(own), root);
}

testing::AssertionResult isExpected(const std::string& got, const std::string& file) {
  const std::string expected = joined(linesOf(readText(layout().tests() / "host" / file)));
  if (got == expected) return testing::AssertionSuccess();
  const auto wanted = linesOf(expected), came = linesOf(got);
  std::size_t first = 0;
  while (first < wanted.size() && first < came.size() && wanted[first] == came[first]) ++first;
  const auto line = [&](const std::vector<std::string>& lines) {
    return first < lines.size() ? "\"" + lines[first] + "\"" : std::string("the end");
  };
  return testing::AssertionFailure() << file << ", line " << first + 1 << ": expected " << line(wanted)
                                     << ", got " << line(came) << " in\n"
                                     << got;
}

testing::AssertionResult endsAsExpected(const Host& host, const std::string& name) {
  const std::string trace = masked(host.trace());
  const auto result = isExpected(trace, name + ".expected");
  if (!result) return result;
  if (const int code = host.wait(); code != 0)
    return testing::AssertionFailure() << "the host " << name << " ended with " << code;
  return result;
}

}  // namespace vordane::suite

#include "trace/recorder.h"

#include <charconv>
#include <chrono>
#include <cmath>

#include "text/dates.h"

namespace vordane::trace {
namespace {

using automation::Argument;
using automation::Value;

void appendDouble(double number, std::string& out) {
  if (!std::isfinite(number)) {
    out += R"({"is":"no number"})";
    return;
  }
  char text[40];
  out.append(text, std::to_chars(text, text + sizeof text, number).ptr);
}

}  // namespace

Moment systemMoment() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

// --- a line

void Line::name(std::string_view name) {
  out_ += ",\"";
  out_ += name;
  out_ += "\":";
}

Line& Line::word(std::string_view field, std::string_view value) {
  name(field);
  out_ += '"';
  out_ += value;
  out_ += '"';
  return *this;
}

Line& Line::text(std::string_view field, std::u16string_view value) {
  name(field);
  append(value);
  return *this;
}

Line& Line::number(std::string_view field, std::int64_t value) {
  name(field);
  appendNumber(value, out_);
  return *this;
}

Line& Line::flag(std::string_view field, bool value) {
  name(field);
  out_ += value ? "true" : "false";
  return *this;
}

Line& Line::value(std::string_view field, const Value& value) {
  name(field);
  append(value);
  return *this;
}

Line& Line::arguments(std::span<const Argument> arguments) {
  name("arguments");
  out_ += '[';
  std::string references;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) out_ += ',';
    append(arguments[i].value);
    if (!arguments[i].byReference) continue;
    references += references.empty() ? "" : ",";
    appendNumber(static_cast<std::int64_t>(i), references);
  }
  out_ += ']';
  if (!references.empty()) out_ += R"(,"references":[)" + references + "]";
  return *this;
}

Line& Line::changes(std::span<const Argument> before, std::span<const Argument> after) {
  bool any = false;
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (before[i].value == after[i].value) continue;
    out_ += any ? "," : R"(,"changed":{)";
    any = true;
    out_ += '"';
    appendNumber(static_cast<std::int64_t>(i), out_);
    out_ += "\":";
    append(after[i].value);
  }
  if (any) out_ += '}';
  return *this;
}

void Line::append(std::u16string_view text) {
  std::u16string place;
  const std::u16string_view shown = recorder_.secrets().hidden(text, place);
  if (shown.size() <= Recorder::longestText) return appendJson(shown, out_);
  out_ += R"({"cut":)";
  appendJson(shown.substr(0, Recorder::longestText), out_);
  out_ += R"(,"length":)";
  appendNumber(static_cast<std::int64_t>(text.size()), out_);
  out_ += '}';
}

void Line::append(const Value& value) {
  struct Appender {
    Line& line;
    std::string& out;
    void is(std::string_view what) const { ((out += R"({"is":")") += what) += "\"}"; }

    void operator()(automation::Empty) const { is("Empty"); }
    void operator()(automation::Null) const { is("Null"); }
    void operator()(automation::Missing) const { is("Missing"); }
    void operator()(bool flag) const { out += flag ? "true" : "false"; }
    void operator()(float number) const { appendDouble(static_cast<double>(number), out); }
    void operator()(double number) const { appendDouble(number, out); }
    void operator()(const std::u16string& text) const { line.append(std::u16string_view(text)); }
    void operator()(automation::Date moment) const {
      out += R"({"date":)";
      appendJson(text::isoMoment(moment.days), out);
      out += '}';
    }
    void operator()(const automation::ObjectRef& object) const {
      if (!object) return is("Nothing");
      out += R"({"object":)";
      appendNumber(line.recorder_.numberOf(*object), out);
      out += '}';
    }
    void operator()(std::uint8_t number) const { appendNumber(number, out); }
    void operator()(std::int16_t number) const { appendNumber(number, out); }
    void operator()(std::int32_t number) const { appendNumber(number, out); }
  };
  std::visit(Appender{*this, out_}, value);
}

// --- the way to the thread that writes

std::int64_t Recorder::numberOf(const automation::Object& object) const {
  const auto found = objects_.find(&object);
  return found == objects_.end() ? 0 : found->second;
}

Line Recorder::begin(std::string_view event) {
  endList();
  line_ = R"({"at":")";
  appendMoment(now(), line_);
  line_ += '"';
  Line line(*this, line_);
  line.word("event", event);
  return line;
}

void Recorder::end() {
  line_ += "}\n";
  if (!put(line_)) ++leftOut_;
  unwoken_ = 0;
  writer_->wake();
}

bool Recorder::put(std::string_view line) noexcept {
  try {
    if (leftOut_ > 0) {
      std::string told = R"({"at":")";
      appendMoment(now(), told);
      told += R"(","event":"left out","why":"too fast","count":)";
      appendNumber(static_cast<std::int64_t>(leftOut_), told);
      told += "}\n";
      if (!writer_->ring().put(told)) return false;
      leftOut_ = 0;
    }
    return writer_->ring().put(line);
  } catch (const std::exception&) {
    return false;
  }
}

void Recorder::endList() noexcept {
  if (!list_.isOpen()) return;
  const std::string_view line = list_.end();
  if (!put(line)) leftOut_ += list_.values();
  // A long list wakes the other thread now and then; what comes behind it does.
  unwoken_ += line.size();
  if (unwoken_ < unwokenAtMost) return;
  unwoken_ = 0;
  writer_->wake();
}

bool Recorder::beginList(std::int64_t object, std::int16_t index) noexcept {
  endList();
  try {
    list_.begin(now(), object, index);
    return true;
  } catch (const std::exception&) {
    ++leftOut_;
    return false;
  }
}

void Recorder::flush() noexcept {
  endList();
  writer_->waitUntilWritten(Writer::patience);
}

}  // namespace vordane::trace

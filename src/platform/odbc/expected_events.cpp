#include "platform/odbc/expected_events.h"

namespace vordane::odbc {
namespace {

constexpr std::size_t mostCharactersAsked = 4 << 20;

}  // namespace

void ExpectedEvents::clear() {
  events_.clear();
  places_.clear();
  forgetAnswers();
}

void ExpectedEvents::add(const std::u16string& identity, std::vector<Field> fields) {
  if (places_.emplace(identity, events_.size()).second) events_.push_back({std::move(fields), {}});
}

const std::vector<std::int64_t>* ExpectedEvents::known(const std::u16string& identity) const {
  const auto found = places_.find(identity);
  const bool answered = found != places_.end() && found->second >= asked_ && found->second < answered_;
  return answered ? &events_[found->second].keys : nullptr;
}

Fields ExpectedEvents::ask(const std::u16string& identity) {
  asked_ = answered_ = places_.at(identity);
  const Field& owner = events_[asked_].fields.front();
  Fields arrays(events_[asked_].fields.size());
  std::vector<std::u16string> written(arrays.size());
  std::size_t characters = 0, end = asked_;
  for (; end < events_.size() && characters < mostCharactersAsked; ++end) {
    Event& event = events_[end];
    if (event.fields.front() != owner) break;
    event.keys.clear();
    for (std::size_t i = 0; i < written.size(); ++i) {
      appendToArray(written[i], event.fields[i]);
      characters += event.fields[i] ? event.fields[i]->size() : 0;
    }
  }
  asking_ = end;
  for (std::size_t i = 0; i < arrays.size(); ++i) arrays[i] = std::move(written[i] += u'}');
  return arrays;
}

void ExpectedEvents::take(const std::vector<Fields>& answers) {
  for (const Fields& row : answers)
    events_.at(asked_ + static_cast<std::size_t>(numberFrom(row.at(0))) - 1)
        .keys.push_back(numberFrom(row.at(1)));
  answered_ = asking_;
}

}  // namespace vordane::odbc

#include "platform/sqlite/description_order.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <optional>

#include "platform/sqlite/fault_index.h"
#include "platform/sqlite/text_rules.h"

namespace vordane::sqlite {
namespace {

// So many texts are held at once, at most.
constexpr std::size_t fewTexts = 2048, mostSamples = 4095;
constexpr std::uint32_t readTogether = 256, sparse = 8;
// Class 2 i lies before sample i, class 2 i + 1 is sample i itself: 13 bits. The others hold the characters
// behind the common beginning, or the number of the kind where the descriptions are all the same.
constexpr int lowBits = 35;
constexpr std::size_t classCount = 2 * (mostSamples + 1);
static_assert(classCount <= std::size_t{1} << (48 - lowBits));

std::size_t commonLength(std::string_view a, std::string_view b) {
  const std::size_t shorter = std::min(a.size(), b.size());
  std::size_t i = 0;
  for (std::uint64_t x = 0, y = 0; i + sizeof x <= shorter; i += sizeof x) {
    std::memcpy(&x, a.data() + i, sizeof x);
    std::memcpy(&y, b.data() + i, sizeof y);
    if (x != y) return i + static_cast<std::size_t>(std::countr_zero(x ^ y)) / 8;
  }
  while (i < shorter && a[i] == b[i]) ++i;
  return i;
}

std::uint64_t charactersOf(std::string_view text, std::size_t begin) {
  std::uint64_t characters = 0;
  for (std::size_t i = begin; i < begin + 5; ++i)
    characters = characters << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
  return characters >> (40 - lowBits);
}

}  // namespace

DescriptionOrder::DescriptionOrder(Connection& connection, const Blocks<std::uint32_t>& counts)
    : connection_(connection),
      counts_(counts),
      row_(connection, "SELECT Description, Fault, Alarm FROM FaultDisplay WHERE Count = ?"),
      neighbours_(connection,
                  "SELECT Description, Fault, Alarm, Count FROM FaultDisplay WHERE Count BETWEEN ? AND ? "
                  "ORDER BY Count") {}

std::vector<std::uint32_t> DescriptionOrder::run() {
  if (counts_.size() > fewTexts) {
    chooseSamples();
    makeKeys();
    sortClasses();
  } else {
    order_.resize(counts_.size());
    std::iota(order_.begin(), order_.end(), 0U);
    sortTexts(order_.begin(), order_.end());
  }
  for (std::uint32_t& position : order_) position = counts_[position];
  return std::move(order_);
}

void DescriptionOrder::take(const Statement& row, Texts& out) {
  int column = 0;
  for (std::string* key : {&out.description, &out.fault, &out.alarm}) {
    key->clear();
    appendField(row.textIfAny(column++, copy_), *key);
  }
}

// A fault that has gone since counts as one without texts.
void DescriptionOrder::read(std::uint32_t fault, Texts& out) {
  row_.bind(1, std::int64_t{counts_[fault]});
  out = {};
  if (row_.step()) take(row_, out);
  row_.reset();
}

// Evenly, but never in step with whatever comes round again in the list.
void DescriptionOrder::chooseSamples() {
  const std::size_t wanted = std::min(mostSamples, counts_.size() / 16), step = counts_.size() / wanted;
  Texts texts;
  for (std::size_t i = 0; i < wanted; ++i) {
    read(static_cast<std::uint32_t>(i * step + i * 2654435761U % step), texts);
    samples_.push_back(texts.description);
  }
  std::sort(samples_.begin(), samples_.end());
  samples_.erase(std::unique(samples_.begin(), samples_.end()), samples_.end());
  commonBegin_.assign(samples_.size() + 1, 0);
  for (std::size_t i = 1; i < samples_.size(); ++i)
    commonBegin_[i] = commonLength(samples_[i - 1], samples_[i]);
}

// Looks for the place among the samples; what the places around have in common is compared once.
std::uint64_t DescriptionOrder::keyOf(std::string_view text) {
  std::size_t low = 0, high = samples_.size();  // the place lies in [low, high]
  std::size_t commonLow = 0, commonHigh = 0;    // with the samples before and at those places
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    const std::string& sample = samples_[middle];
    std::size_t common = std::min(commonLow, commonHigh);
    common += commonLength(std::string_view(sample).substr(common), text.substr(common));
    if (common == sample.size() && common == text.size()) return std::uint64_t{2 * middle + 1} << lowBits;
    if (common == sample.size() || (common < text.size() && static_cast<unsigned char>(sample[common]) <
                                                                static_cast<unsigned char>(text[common]))) {
      low = middle + 1;
      commonLow = common;
    } else {
      high = middle;
      commonHigh = common;
    }
  }
  return std::uint64_t{2 * low} << lowBits | charactersOf(text, commonBegin_[low]);
}

void DescriptionOrder::setKey(std::uint32_t fault, const Texts& texts) {
  std::uint64_t key = keyOf(texts.description);
  if ((key >> lowBits & 1) != 0) {
    kind_.assign(texts.fault).append(1, '\xFF').append(texts.alarm);
    key |= kinds_.numberOf(kind_);
  }
  keys_[fault] = {{static_cast<std::uint16_t>(key >> 32), static_cast<std::uint16_t>(key >> 16),
                   static_cast<std::uint16_t>(key)}};
}

void DescriptionOrder::makeKeys() {
  const auto size = static_cast<std::uint32_t>(counts_.size());
  for (std::uint32_t begin = 0; begin < size; begin += readTogether) {
    makeKeys(begin, std::min(begin + readTogether, size));
    connection_.progress(begin, size);
  }
  std::size_t placeCount = 0;
  kindPlaces_ = kinds_.places(FaultOrder::fault, placeCount);
  samples_ = {};
  commonBegin_ = {};
}

// Faults that follow each other in time mostly lie together in the table: they are read in one go.
void DescriptionOrder::makeKeys(std::uint32_t begin, std::uint32_t end) {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> faults;  // Count, and where it stands
  for (std::uint32_t fault = begin; fault < end; ++fault) {
    faults.emplace_back(counts_[fault], fault);
    keys_.push_back({});
  }
  std::sort(faults.begin(), faults.end());
  Texts texts;
  if (faults.back().first - faults.front().first >= sparse * readTogether) {
    for (const auto& [count, fault] : faults) {
      read(fault, texts);
      setKey(fault, texts);
    }
    return;
  }
  neighbours_.bind(1, std::int64_t{faults.front().first});
  neighbours_.bind(2, std::int64_t{faults.back().first});
  auto next = faults.begin();
  while (neighbours_.step()) {
    for (; next->first < neighbours_.integer(3); ++next) setKey(next->second, {});
    if (next->first != neighbours_.integer(3)) continue;
    take(neighbours_, texts);
    setKey(next++->second, texts);
  }
  for (; next != faults.end(); ++next) setKey(next->second, {});
  neighbours_.reset();
}

std::uint64_t DescriptionOrder::keyAt(std::uint32_t fault) const {
  const auto& parts = keys_[fault].parts;
  return std::uint64_t{parts[0]} << 32 | std::uint64_t{parts[1]} << 16 | parts[2];
}

// Into their classes first, each in the order of time as it was, then within each class.
void DescriptionOrder::sortClasses() {
  std::vector<std::uint32_t> ends(classCount + 1, 0);
  for (std::uint32_t fault = 0; fault < counts_.size(); ++fault) ++ends[(keyAt(fault) >> lowBits) + 1];
  for (std::size_t i = 1; i < ends.size(); ++i) ends[i] += ends[i - 1];
  order_.resize(counts_.size());
  for (std::uint32_t fault = 0; fault < counts_.size(); ++fault)
    order_[ends[keyAt(fault) >> lowBits]++] = fault;
  std::uint32_t begin = 0;
  for (std::uint64_t number = 0; number < classCount; ++number) {
    sortClass(number, order_.begin() + begin, order_.begin() + ends[number]);
    begin = ends[number];
    connection_.progress(counts_.size(), counts_.size());
  }
}

void DescriptionOrder::sortClass(std::uint64_t number, Position begin, Position end) {
  if ((number & 1) != 0) {
    const auto place = [this](std::uint32_t fault) {
      return kindPlaces_[keyAt(fault) & ((std::uint64_t{1} << lowBits) - 1)];
    };
    std::sort(begin, end, [&](std::uint32_t a, std::uint32_t b) {
      return std::pair(place(a), a) < std::pair(place(b), b);
    });
    return;
  }
  std::sort(begin, end, [this](std::uint32_t a, std::uint32_t b) {
    return std::pair(keyAt(a), a) < std::pair(keyAt(b), b);
  });
  sortAlike(begin, end);
}

void DescriptionOrder::sortAlike(Position begin, Position end) {
  while (begin != end) {
    const std::uint64_t key = keyAt(*begin);
    const Position next = std::find_if(begin, end, [&](std::uint32_t fault) { return keyAt(fault) != key; });
    if (next - begin > 1) sortTexts(begin, next);
    begin = next;
  }
}

void DescriptionOrder::sortTexts(Position begin, Position end) {
  const auto size = static_cast<std::size_t>(end - begin);
  if (size > fewTexts) return partTexts(begin, end);
  std::vector<std::pair<Texts, std::uint32_t>> rows(size);
  for (std::size_t i = 0; i < size; ++i) {
    rows[i].second = begin[static_cast<std::ptrdiff_t>(i)];
    read(rows[i].second, rows[i].first);
  }
  std::sort(rows.begin(), rows.end());
  std::transform(rows.begin(), rows.end(), begin, [](const auto& row) { return row.second; });
}

// Too many to be held: into those before one of them, those like it and those behind it.
void DescriptionOrder::partTexts(Position begin, Position end) {
  Texts pivot, texts;
  read(begin[(end - begin) / 2], pivot);
  Position before = begin, behind = end;
  for (Position at = begin; at != behind;) {
    read(*at, texts);
    if (texts < pivot) {
      std::iter_swap(before++, at++);
    } else if (texts == pivot) {
      ++at;
    } else {
      std::iter_swap(at, --behind);
    }
  }
  std::sort(before, behind);
  sortTexts(begin, before);
  sortTexts(behind, end);
}

}  // namespace vordane::sqlite

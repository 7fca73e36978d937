// Rows in memory, as a database's row list and as the grid's source: what a list that a person works with
// stands on.
#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fakes/memory_notes.h"
#include "platform/database.h"
#include "platform/view.h"

namespace vordane::fakes {

struct MemoryRow {
  std::u16string fault = u"01", alarm = u"MJ", date = u"2026/11/20 10:00", cpu = u"MP   ",
                 description = u"text";
  std::int64_t count = 0;
  bool gone = false;
};

class MemoryRows final : public window::GridSource, public database::RowList {
 public:
  explicit MemoryRows(std::vector<MemoryRow> given = {}) : rows(std::move(given)) {}

  std::size_t size() const override { return rows.size(); }
  std::optional<window::GridRow> row(std::size_t position) override {
    if (position >= rows.size() || rows[position].gone) return {};
    const MemoryRow& row = rows[position];
    return window::GridRow{row.fault, row.alarm, row.date, row.cpu, row.description, row.count};
  }
  std::vector<Range> provenance(std::size_t row, std::size_t position) override {
    return {{row, position}};  // what was asked for
  }
  std::optional<Range> dataPart(std::size_t row) override {
    return knowsData ? std::optional(Range{row, row + 1}) : std::nullopt;
  }
  database::RowList* list() override { return held ? nullptr : this; }

  std::optional<std::int64_t> number(std::size_t position) const override {
    return numbered && isRead() ? std::optional(rows.at(position).count) : std::nullopt;
  }

  bool fetch(std::size_t position, std::vector<database::Value>& out) override {
    if (failAtFetch && fetched == *failAtFetch) throw database::DatabaseError(3049, u"damaged");
    ++fetched;
    if (together == 0) ++fetchedApart;
    out.clear();
    if (position >= rows.size() || rows[position].gone) return false;
    const MemoryRow& row = rows[position];
    out = {row.fault, row.alarm, row.date, row.cpu, row.description, static_cast<std::int32_t>(row.count)};
    return true;
  }
  std::unique_ptr<Together> readTogether() override {
    struct Held final : Together {
      explicit Held(int& readings) : together(readings) { ++together; }
      ~Held() override { --together; }
      int& together;
    };
    ++readings;
    return std::make_unique<Held>(together);
  }
  database::Notes* notes() override { return keepsNotes ? &kept : nullptr; }
  void chooseNoted(std::span<const std::uint32_t> positions, std::vector<std::uint32_t>& chosen) override {
    if (!keepsNotes) return;
    for (const std::uint32_t position : positions)
      if (kept.of(rows.at(position).count)) chosen.push_back(position);
  }

  bool isRead() const override { return unread == 0; }
  void readOn() override {
    if (failReadingOn) throw database::DatabaseError(3260, u"locked");
    if (unread > 0 && --unread == 0 && sizeWhenRead) rows.resize(*sizeWhenRead);
  }

  std::vector<MemoryRow> rows;
  std::size_t unread = 0;  // pieces
  bool failReadingOn = false;
  std::optional<std::size_t> sizeWhenRead;
  bool held = false;  // a long step runs
  bool keepsNotes = true;
  MemoryNotes kept{[this](std::int64_t fault) {
    return std::any_of(rows.begin(), rows.end(),
                       [&](const MemoryRow& row) { return row.count == fault && !row.gone; });
  }};
  bool numbered = true;
  bool knowsData = true;  // where each row's data bytes stand: one character, a place further with each row
  std::size_t fetched = 0;
  int together = 0;  // readings under way
  std::size_t readings = 0, fetchedApart = 0;
  std::optional<std::size_t> failAtFetch;
};

}  // namespace vordane::fakes

#include "platform/odbc/row_list.h"

#include <algorithm>
#include <unordered_map>

#include "platform/odbc/errors.h"
#include "platform/odbc/notes.h"
#include "platform/stored_values.h"
#include "text/text.h"

namespace vordane::odbc {
namespace {

// More than a screen shows, so that one question fetches one.
constexpr std::size_t rowsTogether = 200;

class ServerRowList final : public database::RowList {
 public:
  ServerRowList(std::shared_ptr<Session> session, const Plan& plan, std::vector<std::int64_t> keys,
                std::span<const std::u16string_view> columns)
      : session_(std::move(session)), plan_(plan), keys_(std::move(keys)), seen_(session_->changes()) {
    for (const std::u16string_view column : columns) columns_.push_back(plan_.resultColumn(column));
  }

  std::size_t size() const override { return keys_.size(); }
  database::Notes* notes() override {
    return plan_.table->events != nullptr && session_->keepsNotes() ? &notes_ : nullptr;
  }
  database::NoNotes noNotes() const override { return database::NoNotes::server; }

  void chooseNoted(std::span<const std::uint32_t> positions, std::vector<std::uint32_t>& chosen) override {
    if (notes() == nullptr) return;
    const auto events = noted(*session_, *plan_.table);
    for (const std::uint32_t position : positions)
      if (position < size() && events.contains(keys_[position])) chosen.push_back(position);
  }

  std::optional<std::int64_t> number(std::size_t position) const override {
    if (plan_.table->events == nullptr || position >= size()) return {};
    return keys_[position];
  }

  bool fetch(std::size_t position, std::vector<Value>& out) override {
    const Fields& row = rowAt(position);
    if (row.empty()) return false;
    out.clear();
    for (const std::size_t column : columns_)
      out.push_back(database::limitedValue(fromField(plan_.types[column], row.at(column + 1))));
    return true;
  }

 private:
  // Notes come with the rows of a screen. What another station has written is seen when these are read anew.
  class NotesOfRows final : public database::Notes {
   public:
    explicit NotesOfRows(ServerRowList& rows) : rows_(rows) {}
    std::optional<database::Note> of(std::int64_t event) override {
      if (const Fields* row = rows_.readAlready(event)) return noteAtEnd(*row);
      return readNote(*rows_.session_, *rows_.plan_.table, event);
    }
    Put put(std::int64_t event, const database::Note& before, const database::Note& now) override {
      rows_.rows_.clear();
      return putNote(*rows_.session_, *rows_.plan_.table, event, before, now);
    }

   private:
    ServerRowList& rows_;
  };

  bool noteHolds(std::size_t position, std::u16string_view needle) override {
    if (notes() == nullptr) return false;
    const Fields& row = rowAt(position);
    const auto note = row.empty() ? std::nullopt : noteAtEnd(row);
    return note && text::contains(text::toLower(note->text), needle);
  }

  // Null for one that is not among the rows that were read last, or whose row may have changed since.
  const Fields* readAlready(std::int64_t key) const {
    if (seen_ != session_->changes()) return nullptr;
    const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const Fields& row) {
      return !row.empty() && numberFrom(row[0]) == key;
    });
    return found == rows_.end() ? nullptr : &*found;
  }

  const Fields& rowAt(std::size_t position) {
    const std::size_t block = position - position % rowsTogether;
    if (rows_.empty() || block != block_ || seen_ != session_->changes()) {
      rows_.clear();
      seen_ = session_->changes();
      rows_ = readBlock(*session_, plan_, keys_, block);
      block_ = block;
    }
    return rows_.at(position - block_);
  }

  std::shared_ptr<Session> session_;
  const Plan& plan_;
  std::vector<std::int64_t> keys_;
  std::vector<std::size_t> columns_;
  std::vector<Fields> rows_;
  std::size_t block_ = 0;
  std::uint64_t seen_;
  NotesOfRows notes_{*this};
};

}  // namespace

std::unique_ptr<database::RowList> makeRowList(std::shared_ptr<Session> session, const Plan& plan,
                                               const std::vector<jet::Literal>& literals,
                                               std::span<const std::u16string_view> columns) {
  if (!plan.isKeyed() || plan.shape.verb != jet::Verb::select) database::fail(number::invalidOperation);
  auto keys = session->keys(plan, literals);
  return std::make_unique<ServerRowList>(std::move(session), plan, std::move(keys), columns);
}

std::vector<Fields> readBlock(Session& session, const Plan& plan, std::span<const std::int64_t> keys,
                              std::size_t first) {
  const auto wanted = keys.subspan(first, std::min(rowsTogether, keys.size() - first));
  std::unordered_map<std::int64_t, std::size_t> places;
  for (std::size_t i = 0; i < wanted.size(); ++i) places.emplace(wanted[i], i);
  std::vector<Fields> rows(wanted.size());
  for (Fields& row : session.rowsByKey(plan, wanted)) {
    const auto found = places.find(numberFrom(row.at(0)));
    if (found != places.end()) rows[found->second] = std::move(row);
  }
  return rows;
}

}  // namespace vordane::odbc

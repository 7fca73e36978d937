#include "platform/odbc/row_list.h"

#include <algorithm>
#include <unordered_map>

#include "platform/odbc/errors.h"
#include "platform/stored_values.h"

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
  database::NoNotes noNotes() const override { return database::NoNotes::server; }

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

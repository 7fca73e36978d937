#include "platform/odbc/arrivals.h"

#include <random>

namespace vordane::odbc {
namespace {

std::u16string randomIdentity() {
  constexpr std::u16string_view digits = u"0123456789abcdef";
  constexpr std::size_t length = 32;
  std::random_device random;
  std::u16string identity;
  while (identity.size() < length) identity.push_back(digits[random() % digits.size()]);
  return identity;
}

class ServerArrivals final : public database::Arrivals {
 public:
  ServerArrivals(std::shared_ptr<Session> session, const Table& table)
      : session_(std::move(session)), table_(table) {}

  std::u16string identity() override {
    if (session_->readOnly()) return {};
    return session_->agree(identitySubject, {std::u16string(identitySubject), randomIdentity()}).mark;
  }
  std::int64_t highest() override { return session_->highestEvent(table_); }
  std::vector<database::Arrival> after(std::int64_t number, std::size_t most) override {
    return session_->eventsAfter(table_, number, most);
  }
  std::optional<database::Latest> latest(std::int64_t owner, std::int64_t mark) override {
    return session_->latest(table_, owner, mark);
  }

 private:
  std::shared_ptr<Session> session_;
  const Table& table_;
};

}  // namespace

std::shared_ptr<database::Arrivals> makeArrivals(std::shared_ptr<Session> session) {
  const Table* table = session->eventTable();
  return table != nullptr ? std::make_shared<ServerArrivals>(std::move(session), *table) : nullptr;
}

}  // namespace vordane::odbc

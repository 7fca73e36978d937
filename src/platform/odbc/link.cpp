#include "platform/odbc/link.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/odbc/errors.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

void* numberAttribute(std::intptr_t value) {
  return reinterpret_cast<void*>(value);
}

// What the server says, without its details and hints, which may hold a row's values.
std::u16string_view firstSentence(std::u16string_view said) {
  const auto end = std::min(said.find(u'\n'), said.find(u";\n"));
  return text::trim(said.substr(0, end));
}

}  // namespace

bool canTravel(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\0') return false;
    if ((text[i] & 0xF800) != 0xD800) continue;
    const bool pair = text[i] < 0xDC00 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    if (!pair) return false;
    ++i;
  }
  return true;
}

// Owns a statement handle.
class Link::Prepared {
 public:
  Prepared(Link& link, const std::string& statement) : link_(link), owned_(link) {
    link_.check(link_.api_.allocHandle(sql::handleStatement, link_.connection_, &handle_),
                sql::handleConnection, link_.connection_);
    std::u16string text = text::fromUtf8(statement);
    link_.check(link_.api_.prepare(handle_, text.data(), static_cast<std::int32_t>(text.size())),
                sql::handleStatement, handle_);
  }
  Prepared(const Prepared&) = delete;
  Prepared& operator=(const Prepared&) = delete;

  // Throws; true when it gives rows or changed something.
  void execute(std::span<const Field> values) {
    close();
    lengths_.resize(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) bind(i, values[i]);
    const Return result = link_.waiter_.call([&] { return link_.api_.execute(handle_); });
    if (result != sql::noData) link_.check(result, sql::handleStatement, handle_);
  }
  bool next() {
    const Return result = link_.api_.fetch(handle_);
    if (result == sql::noData) return false;
    link_.check(result, sql::handleStatement, handle_);
    return true;
  }
  // Of the current row, from 0. A piece at a time, since how long a text is need not be known beforehand.
  Field field(std::size_t column) {
    std::u16string text;
    for (;;) {
      Length length = 0;
      const Return result =
          link_.api_.getData(handle_, static_cast<std::uint16_t>(column + 1), sql::valueWide, piece_.data(),
                             static_cast<Length>(piece_.size() * sizeof(char16_t)), &length);
      if (result == sql::noData) return text;
      link_.check(result, sql::handleStatement, handle_);
      if (length == sql::nullData) return std::nullopt;
      const std::size_t room = piece_.size() - 1;  // a closing NUL takes a place
      const bool whole =
          length != sql::noTotal && static_cast<std::size_t>(length) / sizeof(char16_t) <= room;
      text.append(piece_.data(), whole ? static_cast<std::size_t>(length) / sizeof(char16_t) : room);
      if (whole) return text;
      if (length != sql::noTotal)
        text.reserve(text.size() + static_cast<std::size_t>(length) / sizeof(char16_t));
    }
  }
  std::int64_t changed() {
    Length rows = 0;
    link_.check(link_.api_.rowCount(handle_, &rows), sql::handleStatement, handle_);
    return rows;
  }
  std::size_t columns() {
    std::int16_t count = 0;
    link_.check(link_.api_.numResultCols(handle_, &count), sql::handleStatement, handle_);
    return static_cast<std::size_t>(count);
  }
  void close() noexcept { link_.api_.freeStmt(handle_, sql::closeCursor); }

 private:
  // Gives the handle back, also when preparing has failed.
  struct Owned {
    explicit Owned(Link& owner) : link(owner) {}
    ~Owned() {
      if (handle != nullptr) link.api_.freeHandle(sql::handleStatement, handle);
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    Link& link;
    Handle handle = nullptr;
  };
  // The driver takes the value where it stands, when the statement is executed.
  void bind(std::size_t parameter, const Field& value) {
    static constexpr char16_t none[] = u"";
    lengths_[parameter] = value ? static_cast<Length>(value->size() * sizeof(char16_t)) : sql::nullData;
    auto* characters = const_cast<char16_t*>(value && !value->empty() ? value->data() : none);
    const auto size = static_cast<std::uintptr_t>(std::max<std::size_t>(1, value ? value->size() : 0));
    link_.check(link_.api_.bindParameter(handle_, static_cast<std::uint16_t>(parameter + 1), sql::input,
                                         sql::valueWide, sql::typeLongText, size, 0, characters,
                                         static_cast<Length>(size * sizeof(char16_t)), &lengths_[parameter]),
                sql::handleStatement, handle_);
  }

  Link& link_;
  Owned owned_;
  Handle& handle_ = owned_.handle;
  std::vector<Length> lengths_;
  std::array<char16_t, 16384> piece_{};
};

Link::Link(const Api& api, std::u16string connection, std::chrono::seconds patience, Waiter& waiter)
    : api_(api), waiter_(waiter) {
  try {
    if (!sql::ok(api_.allocHandle(sql::handleEnvironment, nullptr, &environment_)))
      database::fail(number::connectionFailed, u"ODBC");
    check(api_.setEnvAttr(environment_, sql::attributeVersion, numberAttribute(sql::versionOdbc3), 0),
          sql::handleEnvironment, environment_);
    check(api_.allocHandle(sql::handleConnection, environment_, &connection_), sql::handleEnvironment,
          environment_);
    // Not every driver knows it; one that does not has limits of its own.
    api_.setConnectAttr(connection_, sql::attributeLoginTimeout, numberAttribute(patience.count()), 0);
    std::int16_t answered = 0;
    const Return result = waiter_.call([&] {
      return api_.driverConnect(connection_, nullptr, connection.data(),
                                static_cast<std::int16_t>(connection.size()), nullptr, 0, &answered,
                                sql::noCompletion);
    });
    check(result, sql::handleConnection, connection_);
    connected_ = true;
  } catch (...) {
    close();
    throw;
  }
}

Link::~Link() {
  rollback();
  close();
}

void Link::close() noexcept {
  prepared_.clear();
  if (connected_) api_.disconnect(connection_);
  if (connection_ != nullptr) api_.freeHandle(sql::handleConnection, connection_);
  if (environment_ != nullptr) api_.freeHandle(sql::handleEnvironment, environment_);
}

// What failed first is told: what follows from it says less.
void Link::raise(std::int16_t kind, Handle handle) {
  std::array<char16_t, 6> state{};
  std::array<char16_t, 1024> message{};
  std::int32_t native = 0;
  std::int16_t length = 0;
  const Return result = api_.getDiagRec(kind, handle, 1, state.data(), &native, message.data(),
                                        static_cast<std::int16_t>(message.size()), &length);
  std::u16string said;
  std::string code;
  if (sql::ok(result)) {
    code = text::toUtf8({state.data(), 5});
    said.assign(message.data(), std::min<std::size_t>(static_cast<std::size_t>(length), message.size() - 1));
  }
  if (connected_ && (code.empty() || meansLost(code))) lost_ = true;
  const int number = connected_ ? numberOf(code) : number::connectionFailed;
  database::fail(lost_ ? number::connectionFailed : number, firstSentence(said));
}

void Link::check(Return result, std::int16_t kind, Handle handle) {
  if (!sql::ok(result)) raise(kind, handle);
}

void Link::requireLink() const {
  if (lost_) database::fail(number::connectionFailed);
}

Link::Prepared& Link::run(const std::string& statement, std::span<const Field> values) {
  requireLink();
  auto& prepared = prepared_[statement];
  if (!prepared) {
    try {
      prepared = std::make_unique<Prepared>(*this, statement);
    } catch (...) {
      prepared_.erase(statement);
      throw;
    }
  }
  prepared->execute(values);
  return *prepared;
}

std::vector<Fields> Link::query(const std::string& statement, std::span<const Field> values) {
  Prepared& prepared = run(statement, values);
  std::vector<Fields> rows;
  const std::size_t columns = prepared.columns();
  while (prepared.next()) {
    Fields& row = rows.emplace_back(columns);
    for (std::size_t i = 0; i < columns; ++i) row[i] = prepared.field(i);
  }
  prepared.close();
  return rows;
}

std::int64_t Link::change(const std::string& statement, std::span<const Field> values) {
  Prepared& prepared = run(statement, values);
  const std::int64_t changed = prepared.changed();
  prepared.close();
  return changed;
}

void Link::setAutocommit(bool on) {
  check(api_.setConnectAttr(connection_, sql::attributeAutocommit, numberAttribute(on ? 1 : 0), 0),
        sql::handleConnection, connection_);
}

void Link::begin() {
  requireLink();
  setAutocommit(false);
  inTransaction_ = true;
}

void Link::commit() {
  requireLink();
  if (!inTransaction_) return;
  const Return result =
      waiter_.call([&] { return api_.endTran(sql::handleConnection, connection_, sql::commit); });
  check(result, sql::handleConnection, connection_);
  inTransaction_ = false;
  setAutocommit(true);
}

void Link::rollback() noexcept {
  if (!inTransaction_) return;
  inTransaction_ = false;
  if (lost_) return;
  const bool done = sql::ok(api_.endTran(sql::handleConnection, connection_, sql::rollback));
  const bool back =
      done && sql::ok(api_.setConnectAttr(connection_, sql::attributeAutocommit, numberAttribute(1), 0));
  if (!back) lost_ = true;
}

}  // namespace vordane::odbc

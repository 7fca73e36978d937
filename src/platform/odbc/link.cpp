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

// The handles of a connection. A step that was given up holds it as long as the driver works on it.
struct Link::Connection {
  explicit Connection(const Api& functions) : api(functions) {}
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  Return setAutocommit(bool on) {
    return api.setConnectAttr(handle, sql::attributeAutocommit, numberAttribute(on ? 1 : 0), 0);
  }

  // What the driver knows, whatever else it says has failed.
  bool isDead() const {
    std::uint32_t dead = 0;
    return sql::ok(api.getConnectAttr(handle, sql::attributeDead, &dead, 0, nullptr)) && dead != 0;
  }

  const Api api;
  std::u16string text;
  Handle environment = nullptr, handle = nullptr;
  bool connected = false;
  std::unordered_map<std::string, std::unique_ptr<Prepared>> prepared;
};

// Owns a statement handle and, until the next execution, the values: the driver takes them where they stand.
class Link::Prepared {
 public:
  explicit Prepared(const Api& api) : api_(api) {}
  ~Prepared() {
    if (handle_ != nullptr) api_.freeHandle(sql::handleStatement, handle_);
  }
  Prepared(const Prepared&) = delete;
  Prepared& operator=(const Prepared&) = delete;

  Handle handle() const { return handle_; }
  Return make(Handle connection) { return api_.allocHandle(sql::handleStatement, connection, &handle_); }
  Return prepare(const std::string& statement) {
    text_ = text::fromUtf8(statement);
    return api_.prepare(handle_, text_.data(), static_cast<std::int32_t>(text_.size()));
  }
  Return bind(std::span<const Field> values) {
    close();
    values_.assign(values.begin(), values.end());
    lengths_.resize(values_.size());
    Return result = sql::success;
    for (std::size_t i = 0; i < values_.size() && sql::ok(result); ++i) result = bind(i);
    return result;
  }
  Return execute() { return api_.execute(handle_); }
  Return fetch() { return api_.fetch(handle_); }
  // Of the current row, from 0, into `text`; nothing for Null. A piece at a time, since how long a text is
  // need not be known beforehand.
  Return field(std::size_t column, Field& text) {
    text.emplace();
    for (;;) {
      Length length = 0;
      const Return result =
          api_.getData(handle_, static_cast<std::uint16_t>(column + 1), sql::valueWide, piece_.data(),
                       static_cast<Length>(piece_.size() * sizeof(char16_t)), &length);
      if (result == sql::noData) return sql::success;
      if (!sql::ok(result)) return result;
      if (length == sql::nullData) {
        text.reset();
        return result;
      }
      const std::size_t room = piece_.size() - 1;  // a closing NUL takes a place
      const bool whole =
          length != sql::noTotal && static_cast<std::size_t>(length) / sizeof(char16_t) <= room;
      text->append(piece_.data(), whole ? static_cast<std::size_t>(length) / sizeof(char16_t) : room);
      if (whole) return result;
      if (length != sql::noTotal)
        text->reserve(text->size() + static_cast<std::size_t>(length) / sizeof(char16_t));
    }
  }
  Return changed(Length& rows) { return api_.rowCount(handle_, &rows); }
  Return columns(std::int16_t& count) { return api_.numResultCols(handle_, &count); }
  void close() noexcept { api_.freeStmt(handle_, sql::closeCursor); }

 private:
  Return bind(std::size_t parameter) {
    static constexpr char16_t none[] = u"";
    const Field& value = values_[parameter];
    lengths_[parameter] = value ? static_cast<Length>(value->size() * sizeof(char16_t)) : sql::nullData;
    auto* characters = const_cast<char16_t*>(value && !value->empty() ? value->data() : none);
    const auto size = static_cast<std::uintptr_t>(std::max<std::size_t>(1, value ? value->size() : 0));
    return api_.bindParameter(handle_, static_cast<std::uint16_t>(parameter + 1), sql::input, sql::valueWide,
                              sql::typeLongText, size, 0, characters,
                              static_cast<Length>(size * sizeof(char16_t)), &lengths_[parameter]);
  }

  const Api& api_;
  Handle handle_ = nullptr;
  std::u16string text_;
  std::vector<Field> values_;
  std::vector<Length> lengths_;
  std::array<char16_t, 16384> piece_{};
};

Link::Connection::~Connection() {
  prepared.clear();
  if (connected) api.disconnect(handle);
  if (handle != nullptr) api.freeHandle(sql::handleConnection, handle);
  if (environment != nullptr) api.freeHandle(sql::handleEnvironment, environment);
}

Link::Link(const Api& api, std::u16string connection, std::chrono::milliseconds patience, Waiter& waiter)
    : waiter_(waiter), connection_(std::make_shared<Connection>(api)) {
  try {
    connect(std::move(connection), patience);
  } catch (...) {
    close();
    throw;
  }
}

void Link::connect(std::u16string connection, std::chrono::milliseconds patience) {
  Connection& to = *connection_;
  to.text = std::move(connection);
  if (!sql::ok(to.api.allocHandle(sql::handleEnvironment, nullptr, &to.environment)))
    database::fail(number::connectionFailed, u"ODBC");
  check(to.api.setEnvAttr(to.environment, sql::attributeVersion, numberAttribute(sql::versionOdbc3), 0),
        sql::handleEnvironment, to.environment);
  check(to.api.allocHandle(sql::handleConnection, to.environment, &to.handle), sql::handleEnvironment,
        to.environment);
  // What the driver has for a limit of its own says more than that the time was over.
  constexpr std::chrono::milliseconds moment{500};
  const Return result = wait(
      [](Connection& made) {
        std::int16_t answered = 0;
        const Return connected = made.api.driverConnect(made.handle, nullptr, made.text.data(),
                                                        static_cast<std::int16_t>(made.text.size()), nullptr,
                                                        0, &answered, sql::noCompletion);
        made.connected = sql::ok(connected);
        return connected;
      },
      {patience + moment, {}});
  check(result, sql::handleConnection, to.handle);
}

Link::~Link() {
  rollback();
  close();
}

// Saying good-bye takes a server that answers.
void Link::close() noexcept {
  if (connection_ == nullptr) return;
  try {
    waiter_.call([last = std::move(connection_)] { return last != nullptr ? sql::success : sql::error; },
                 brief());
  } catch (const std::exception&) {
    // Without a thread for it they went here.
  }
  connection_.reset();
}

// Of what is no answer that somebody waits for.
Waiter::Patience Link::brief() const {
  constexpr std::chrono::milliseconds moment{2000};
  return {patience_.time ? std::optional(std::min(*patience_.time, moment)) : std::nullopt, {}};
}

std::optional<Return> Link::tryStep(const Step& step, const Waiter::Patience& patience) {
  const auto result = waiter_.call([step, kept = connection_] { return step(*kept); }, patience);
  if (result) return result;
  connection_.reset();  // the step has it
  lost_ = hung_ = true;
  return {};
}

Return Link::wait(const Step& step, const Waiter::Patience& patience) {
  const auto result = tryStep(step, patience);
  if (!result) database::fail(number::connectionFailed, u"it does not answer");
  return *result;
}

// What failed first is told: what follows from it says less.
void Link::raise(std::int16_t kind, Handle handle) {
  std::array<char16_t, 6> state{};
  std::array<char16_t, 1024> message{};
  std::int32_t native = 0;
  std::int16_t length = 0;
  const Return result = connection_->api.getDiagRec(kind, handle, 1, state.data(), &native, message.data(),
                                                    static_cast<std::int16_t>(message.size()), &length);
  std::u16string said;
  std::string code;
  if (sql::ok(result)) {
    code = text::toUtf8({state.data(), 5});
    said.assign(message.data(), std::min<std::size_t>(static_cast<std::size_t>(length), message.size() - 1));
  }
  const bool connected = connection_->connected;
  if (connected && (code.empty() || meansLost(code) || connection_->isDead())) lost_ = true;
  const int number = connected ? numberOf(code) : number::connectionFailed;
  const std::u16string_view known = sentenceOf(code);
  database::fail(lost_ ? number::connectionFailed : number, known.empty() ? firstSentence(said) : known);
}

void Link::check(Return result, std::int16_t kind, Handle handle) {
  if (!sql::ok(result)) raise(kind, handle);
}

void Link::requireLink() const {
  if (lost_) database::fail(number::connectionFailed);
}

Link::Prepared& Link::run(const std::string& statement, std::span<const Field> values) {
  requireLink();
  Prepared& prepared = find(statement);
  check(prepared.bind(values), sql::handleStatement, prepared.handle());
  const Return result = wait([&prepared](Connection&) { return prepared.execute(); }, patience_);
  if (result != sql::noData) check(result, sql::handleStatement, prepared.handle());
  return prepared;
}

Link::Prepared& Link::find(const std::string& statement) {
  if (const auto known = connection_->prepared.find(statement); known != connection_->prepared.end())
    return *known->second;
  auto made = std::make_unique<Prepared>(connection_->api);
  check(made->make(connection_->handle), sql::handleConnection, connection_->handle);
  Prepared& prepared = *(connection_->prepared[statement] = std::move(made));
  try {
    check(wait([&prepared, statement](Connection&) { return prepared.prepare(statement); }, patience_),
          sql::handleStatement, prepared.handle());
  } catch (...) {
    if (connection_ != nullptr) connection_->prepared.erase(statement);
    throw;
  }
  return prepared;
}

std::vector<Fields> Link::query(const std::string& statement, std::span<const Field> values) {
  Prepared& prepared = run(statement, values);
  std::vector<Fields> rows;
  std::int16_t columns = 0;
  check(prepared.columns(columns), sql::handleStatement, prepared.handle());
  for (;;) {
    const Return result = prepared.fetch();
    if (result == sql::noData) break;
    check(result, sql::handleStatement, prepared.handle());
    Fields& row = rows.emplace_back(static_cast<std::size_t>(columns));
    for (std::size_t i = 0; i < row.size(); ++i)
      check(prepared.field(i, row[i]), sql::handleStatement, prepared.handle());
  }
  prepared.close();
  return rows;
}

std::int64_t Link::change(const std::string& statement, std::span<const Field> values) {
  Prepared& prepared = run(statement, values);
  Length changed = 0;
  check(prepared.changed(changed), sql::handleStatement, prepared.handle());
  prepared.close();
  return changed;
}

void Link::begin() {
  requireLink();
  check(connection_->setAutocommit(false), sql::handleConnection, connection_->handle);
  inTransaction_ = true;
}

void Link::commit() {
  requireLink();
  if (!inTransaction_) return;
  const Return result =
      wait([](Connection& on) { return on.api.endTran(sql::handleConnection, on.handle, sql::commit); },
           patience_);
  check(result, sql::handleConnection, connection_->handle);
  inTransaction_ = false;
  check(connection_->setAutocommit(true), sql::handleConnection, connection_->handle);
}

void Link::rollback() noexcept {
  if (!inTransaction_) return;
  inTransaction_ = false;
  if (lost_) return;
  try {
    const auto done = tryStep(
        [](Connection& on) {
          const Return back = on.api.endTran(sql::handleConnection, on.handle, sql::rollback);
          return sql::ok(back) ? on.setAutocommit(true) : back;
        },
        brief());
    if (!done || !sql::ok(*done)) lost_ = true;
  } catch (const std::exception&) {
    lost_ = true;
  }
}

}  // namespace vordane::odbc

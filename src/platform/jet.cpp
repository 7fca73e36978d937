#include "platform/jet.h"

#include <array>
#include <charconv>
#include <cstring>
#include <limits>

#include "platform/database.h"
#include "platform/described.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::jet {
namespace {

constexpr std::u16string_view keywords[] = {u"select", u"from", u"where", u"and",   u"order",
                                            u"by",     u"asc",  u"desc",  u"union", u"delete"};

constexpr std::size_t mostLiterals = 6;  // of the longest statement

[[noreturn]] void syntaxError() {
  constexpr int number = 3075;
  throw database::DatabaseError(number, u"Syntax error in statement.");
}

bool isBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}
bool isWordStart(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c >= 0x80;
}
bool isWordPart(char16_t c) {
  return isWordStart(c) || text::isDecimalDigit(c);
}
char16_t lower(char16_t c) {
  return c < 0x80 ? (c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c) : text::lower(c);
}
bool isKeyword(std::u16string_view word) {
  for (std::u16string_view keyword : keywords)
    if (word == keyword) return true;
  return false;
}

// The library compares characters of this width one by one.
bool beginsWith(std::u16string_view text, std::u16string_view piece) {
  return text.size() >= piece.size() &&
         std::memcmp(text.data(), piece.data(), piece.size() * sizeof(char16_t)) == 0;
}

// The digits from `first` on.
std::size_t endOfDigits(std::u16string_view text, std::size_t first) {
  while (first < text.size() && text::isDecimalDigit(text[first])) ++first;
  return first;
}

std::size_t endOfNumber(std::u16string_view text) {
  const bool isSigned = !text.empty() && (text.front() == u'-' || text.front() == u'+');
  return endOfDigits(text, isSigned ? 1 : 0);
}

// An optional sign and digits.
std::int64_t numberFrom(std::u16string_view text) {
  const bool negative = text.front() == u'-';
  if (!text::isDecimalDigit(text.front())) text.remove_prefix(1);
  const std::string digits(text.begin(), text.end());
  std::int64_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  // No stored number has more digits than fit, so such a literal equals none; it is still a number.
  if (result.ec != std::errc{}) number = std::numeric_limits<std::int64_t>::max();
  return negative ? -number : number;
}

// Reads a statement token by token into a shape.
class Lifter {
 public:
  Lifter(std::u16string_view statement, Lifted& out) : whole_(statement), rest_(statement), out_(out) {}

  void run() {
    for (skipBlanks(); !rest_.empty(); skipBlanks()) token();
    if (ended_ > 1) syntaxError();
  }

 private:
  void token() {
    const char16_t c = rest_.front();
    if (ended_ != 0) syntaxError();
    if (c == u'\'' || c == u'"') return literal(c);
    if (c == u'[') return bracketed();
    if (isWordStart(c)) return word();
    if (text::isDecimalDigit(c) || c == u'-' || c == u'+') return number();
    rest_.remove_prefix(1);
    if (c == u';') {
      ++ended_;
    } else if (c == u'*' || c == u',' || c == u'=' || c == u'(' || c == u')') {
      append({&c, 1});
    } else {
      syntaxError();
    }
  }

  void literal(char16_t quote) {
    Literal& value = nextLiteral();
    rest_.remove_prefix(1);
    const std::size_t begin = at();
    for (;;) {
      const auto end = rest_.find(quote);
      if (end == std::u16string_view::npos) syntaxError();
      const bool doubled = end + 1 < rest_.size() && rest_[end + 1] == quote;
      value.text.append(rest_.substr(0, end + (doubled ? 1 : 0)));
      rest_.remove_prefix(end + (doubled ? 2 : 1));
      if (!doubled) break;
    }
    value.isText = true;
    out_.places.push_back({begin, at() - 1});
    append(u"'");
  }

  void number() {
    const std::size_t length = endOfNumber(rest_);
    const bool hasDigit = text::isDecimalDigit(rest_[length - 1]);
    if (!hasDigit || (length < rest_.size() && (isWordPart(rest_[length]) || rest_[length] == u'.')))
      syntaxError();
    nextLiteral().number = numberFrom(rest_.substr(0, length));
    out_.places.push_back({at(), at() + length});
    rest_.remove_prefix(length);
    append(u"#");
  }

  void bracketed() {
    const auto end = rest_.find(u']');
    if (end == std::u16string_view::npos || end == 1) syntaxError();
    name(rest_.substr(1, end - 1));
    rest_.remove_prefix(end + 1);
  }

  void word() {
    std::size_t length = 1;
    while (length < rest_.size() && isWordPart(rest_[length])) ++length;
    const std::u16string_view written = rest_.substr(0, length);
    rest_.remove_prefix(length);
    word_.assign(written);
    for (char16_t& c : word_) c = lower(c);
    skipBlanks();
    // "Count" is a column's name unless it counts.
    const bool counts = word_ == u"count" && !rest_.empty() && rest_.front() == u'(';
    if (counts || isKeyword(word_)) {
      append(word_);
    } else {
      name(word_);
    }
  }

  void name(std::u16string_view text) {
    separate();
    out_.shape.push_back(u'[');
    for (const char16_t c : text) out_.shape.push_back(lower(c));
    out_.shape.push_back(u']');
  }

  void append(std::u16string_view token) {
    separate();
    out_.shape.append(token);
  }
  void separate() {
    if (!out_.shape.empty()) out_.shape.push_back(u' ');
  }
  Literal& nextLiteral() {
    out_.literals.emplace_back();
    return out_.literals.back();
  }
  void skipBlanks() {
    while (!rest_.empty() && isBlank(rest_.front())) rest_.remove_prefix(1);
  }

  std::size_t at() const { return whole_.size() - rest_.size(); }

  std::u16string_view whole_, rest_;
  Lifted& out_;
  std::u16string word_;
  int ended_ = 0;
};

// Reads the tokens of a shape.
class Parser {
 public:
  explicit Parser(std::u16string_view shape) : tokens_(split(shape)) {}

  Shape run() {
    if (accept(u"delete")) {
      shape_.verb = Verb::remove;
      expect(u"from");
      shape_.table = name();
      expect(u"where");
      conditions();
    } else {
      select();
    }
    if (at_ != tokens_.size()) syntaxError();
    return std::move(shape_);
  }

 private:
  // Names may hold blanks, so the shape is cut at the blanks outside brackets.
  static std::vector<std::u16string> split(std::u16string_view shape) {
    std::vector<std::u16string> tokens;
    while (!shape.empty()) {
      const auto end =
          shape.front() == u'[' ? shape.find(u']') + 1 : std::min(shape.find(u' '), shape.size());
      tokens.emplace_back(shape.substr(0, end));
      shape.remove_prefix(std::min(end + 1, shape.size()));
    }
    return tokens;
  }

  void select() {
    expect(u"select");
    if (!accept(u"*")) {
      do shape_.columns.push_back(name());
      while (accept(u","));
    }
    expect(u"from");
    shape_.table = name();
    if (accept(u"union")) return countedUnion();
    if (accept(u"where")) conditions();
    if (accept(u"order")) orders();
  }

  void countedUnion() {
    shape_.verb = Verb::countedUnion;
    for (std::u16string_view token : {u"select", u"#", u",", u"count", u"(", u"*", u")", u"from"})
      expect(token);
    if (name() != shape_.table || !shape_.columns.empty()) syntaxError();
    expect(u"order");
    orders();
    if (shape_.orders.size() != 1 || shape_.orders[0].descending) syntaxError();
  }

  void conditions() {
    do {
      Condition condition{name(), false};
      expect(u"=");
      condition.isText = accept(u"'");
      if (!condition.isText) expect(u"#");
      shape_.conditions.push_back(std::move(condition));
    } while (accept(u"and"));
  }

  void orders() {
    expect(u"by");
    do {
      Order order{name()};
      order.descending = accept(u"desc");
      if (!order.descending) accept(u"asc");
      shape_.orders.push_back(std::move(order));
    } while (accept(u","));
  }

  bool accept(std::u16string_view token) {
    if (at_ == tokens_.size() || tokens_[at_] != token) return false;
    ++at_;
    return true;
  }
  void expect(std::u16string_view token) {
    if (!accept(token)) syntaxError();
  }
  std::u16string name() {
    if (at_ == tokens_.size() || tokens_[at_].front() != u'[') syntaxError();
    const std::u16string& token = tokens_[at_++];
    return token.substr(1, token.size() - 2);
  }

  std::vector<std::u16string> tokens_;
  std::size_t at_ = 0;
  Shape shape_;
};

}  // namespace

void lift(std::u16string_view statement, Lifted& out) {
  out.shape.clear();
  out.literals.clear();
  out.places.clear();
  out.literals.reserve(mostLiterals);
  Lifter(statement, out).run();
}

Skeleton::Skeleton(std::u16string_view statement, const Lifted& lifted) {
  std::size_t end = 0;
  for (std::size_t i = 0; i < lifted.places.size(); ++i) {
    pieces_.emplace_back(statement.substr(end, lifted.places[i].begin - end));
    texts_.push_back(lifted.literals[i].isText);
    end = lifted.places[i].end;
  }
  pieces_.emplace_back(statement.substr(end));
}

bool Skeleton::match(std::u16string_view statement, std::vector<Literal>& literals) const {
  if (!beginsWith(statement, pieces_.front())) return false;
  literals.resize(texts_.size());
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    if (!beginsWith(statement, pieces_[i])) return false;
    statement.remove_prefix(pieces_[i].size());
    Literal& literal = literals[i];
    literal.isText = texts_[i];
    const std::size_t end =
        literal.isText ? text::find(statement, pieces_[i].back()) : endOfNumber(statement);
    if (end == std::u16string_view::npos ||
        (!literal.isText && (end == 0 || !text::isDecimalDigit(statement[end - 1]))))
      return false;
    if (literal.isText) {
      // A doubled quote stands for one: that text must be taken apart.
      if (end + 1 < statement.size() && statement[end + 1] == statement[end]) return false;
      literal.text.assign(statement.substr(0, end));
    } else {
      literal.number = numberFrom(statement.substr(0, end));
    }
    statement.remove_prefix(end);
  }
  return statement == pieces_.back();
}

Shape parse(const Lifted& statement) {
  Shape shape = Parser(statement.shape).run();
  if (shape.verb == Verb::countedUnion && statement.literals.at(0).number != -1) syntaxError();
  return shape;
}

Documented::Documented(database::Descriptions descriptions) : descriptions_(descriptions) {
  Lifted lifted;
  for (const database::Description& description : descriptions) {
    for (const database::StatementPattern& pattern : description.statements) {
      lift(pattern.sample(), lifted);
      shapes_.insert(lifted.shape);
    }
  }
}

Shape Documented::shapeOf(const Lifted& statement) const {
  Shape shape = parse(statement);
  const bool holdsValue = shape.verb != Verb::countedUnion && !statement.literals.empty();
  if (holdsValue && !shapes_.contains(statement.shape)) syntaxError();
  return shape;
}

void Documented::require(std::u16string_view statement, Lifted& lifted) const {
  lift(statement, lifted);
  shapeOf(lifted);
}

bool Documented::hasTable(std::u16string_view name) const {
  return database::findTable(descriptions_, name) != nullptr;
}

}  // namespace vordane::jet

// SPDX-License-Identifier: MIT

#include "scripting/ScriptLexer.h"

#include <cmath>
#include <limits>

namespace quillforth::platform {

namespace {

bool IsASCIILetter(QChar c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool IsASCIIDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

class Lexer {
 public:
  explicit Lexer(QStringView source) : source_(source) {}

  std::optional<std::vector<ScriptToken>> tokens() {
    std::vector<ScriptToken> tokens;
    while (skipBlanks(), position_ < source_.size()) {
      std::optional<ScriptToken> token = next();
      if (!token) return std::nullopt;
      tokens.push_back(std::move(*token));
    }
    tokens.emplace_back();
    return tokens;
  }

 private:
  void skipBlanks() {
    while (peek() == u' ' || peek() == u'\t') ++position_;
  }

  /// NUL beyond the end. A NUL in the text belongs to no token either.
  [[nodiscard]] QChar peek(qsizetype ahead = 0) const {
    return position_ + ahead < source_.size() ? source_[position_ + ahead] : QChar();
  }

  std::optional<ScriptToken> next() {
    const QChar c = peek();
    if (c == u'\r' || c == u'\n') return lineEnd();
    if (c == u'"') return text();
    if (IsASCIIDigit(c)) return number();
    if (IsASCIILetter(c) || c == u'_') return word();
    if (c.isNull() || !QStringView(u"(){},-").contains(c)) return std::nullopt;
    ++position_;
    return ScriptToken{ScriptTokenKind::symbol, QString(c), {}};
  }

  ScriptToken lineEnd() {
    position_ += peek() == u'\r' && peek(1) == u'\n' ? 2 : 1;
    return {ScriptTokenKind::lineEnd, {}, {}};
  }

  ScriptToken word() {
    const qsizetype start = position_;
    while (IsASCIILetter(peek()) || IsASCIIDigit(peek()) || peek() == u'_') ++position_;
    return {ScriptTokenKind::word, source_.sliced(start, position_ - start).toString().toLower(), {}};
  }

  std::optional<ScriptToken> text() {
    QString value;
    for (++position_; position_ < source_.size(); ++position_) {
      QChar c = peek();
      if (c == u'"') {
        ++position_;
        return ScriptToken{ScriptTokenKind::literal, {}, UnicodeTextDescriptor(value)};
      }
      if (c == u'\\') {
        ++position_;
        const qsizetype escape = QStringView(u"\"\\nrt").indexOf(peek());
        if (peek().isNull() || escape < 0) return std::nullopt;
        c = u"\"\\\n\r\t"[escape];
      }
      value += c;
    }
    return std::nullopt;  // the closing quote is missing
  }

  std::optional<ScriptToken> number() {
    const qsizetype start = position_;
    while (IsASCIIDigit(peek())) ++position_;
    const bool isWhole = peek() != u'.';
    if (!isWhole) {
      if (!IsASCIIDigit(peek(1))) return std::nullopt;
      ++position_;
      while (IsASCIIDigit(peek())) ++position_;
    }
    if (IsASCIILetter(peek()) || peek() == u'_' || peek() == u'.') return std::nullopt;
    bool isNumber = false;
    const double value = source_.sliced(start, position_ - start).toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value)) return std::nullopt;
    const bool fits = isWhole && value <= std::numeric_limits<std::int32_t>::max();
    return ScriptToken{ScriptTokenKind::literal,
                       {},
                       fits ? Int32Descriptor(static_cast<std::int32_t>(value)) : Float64Descriptor(value)};
  }

  QStringView source_;
  qsizetype position_ = 0;
};

}  // namespace

std::optional<std::vector<ScriptToken>> ScriptTokens(QStringView source) {
  if (source.size() > kMaximumScriptLength) return std::nullopt;
  return Lexer(source).tokens();
}

}  // namespace quillforth::platform

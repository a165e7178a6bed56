// SPDX-License-Identifier: MIT
//
// Recursive descent over the tokens; each rule of the grammar is one function.

#include <QString>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "appleevents/AppleEvents.h"
#include "scripting/ScriptProgram.h"

namespace quillforth::platform {

namespace {

enum class ScriptTokenKind {
  word,     ///< letters, digits and "_"; letter case does not count
  literal,  ///< a text in double quotes, or a number
  symbol,   ///< one of ( ) { } , -
  lineEnd,  ///< CR, LF or both
  end,      ///< of the text; always the last one
};

struct ScriptToken {
  ScriptTokenKind kind = ScriptTokenKind::end;
  QString text;          ///< of a word, in lower case, or the symbol
  AEDescriptor literal;  ///< text: UTF-16; a whole number: 32 bits, if it fits; else a 64-bit float
};

/// Longer scripts are refused, in UTF-16 units.
constexpr qsizetype kMaximumScriptLength = 16384;

bool IsASCIILetter(QChar c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool IsASCIIDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

// Cuts the text of a script into words, literals, symbols and line ends. In texts \" \\ \n \r and \t stand
// for one character each.
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

// Nothing when the text is too long, or a character belongs to no token. In texts \" \\ \n \r and \t stand
// for one character each.
std::optional<std::vector<ScriptToken>> ScriptTokens(QStringView source) {
  if (source.size() > kMaximumScriptLength) return std::nullopt;
  return Lexer(source).tokens();
}

using Kind = ScriptExpression::Kind;
using MaybeExpression = std::optional<ScriptExpression>;
using MaybeSentence = std::optional<ScriptSentence>;

constexpr std::array kPlaces{QLatin1String("front"), QLatin1String("first"), QLatin1String("current"),
                             QLatin1String("active")};
constexpr std::array kObjects{QLatin1String("window"), QLatin1String("document"), QLatin1String("tab")};
// Words that cannot name a variable. Nor can those for places and objects.
constexpr std::array kReservedWords{
    QLatin1String("tell"),    QLatin1String("application"), QLatin1String("to"),    QLatin1String("end"),
    QLatin1String("set"),     QLatin1String("return"),      QLatin1String("delay"), QLatin1String("activate"),
    QLatin1String("using"),   QLatin1String("keystroke"),   QLatin1String("do"),    QLatin1String("script"),
    QLatin1String("get"),     QLatin1String("as"),          QLatin1String("list"),  QLatin1String("url"),
    QLatin1String("of"),      QLatin1String("properties"),  QLatin1String("item"),  QLatin1String("the"),
    QLatin1String("browser"), QLatin1String("clipboard"),   QLatin1String("true"),  QLatin1String("false")};

template <typename Words>
bool IsOneOf(const Words& words, const QString& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

MaybeExpression Compound(Kind kind, MaybeExpression first) {
  if (!first) return std::nullopt;
  ScriptExpression compound{kind, {}, {}, {}};
  compound.operands.push_back(std::move(*first));
  return compound;
}

MaybeExpression Compound(Kind kind, MaybeExpression first, MaybeExpression second) {
  MaybeExpression compound = second ? Compound(kind, std::move(first)) : std::nullopt;
  if (compound) compound->operands.push_back(std::move(*second));
  return compound;
}

MaybeExpression Literal(AEDescriptor value) {
  return ScriptExpression{Kind::literal, std::move(value), {}, {}};
}

MaybeSentence Sentence(ScriptSentence::Kind kind, MaybeExpression expression) {
  if (!expression) return std::nullopt;
  return ScriptSentence{kind, {}, std::move(expression), false, {}};
}

AEDescriptor Negative(const AEDescriptor& number) {
  if (const std::optional<std::int32_t> value = Int32Value(number)) return Int32Descriptor(-*value);
  return Float64Descriptor(-Float64Value(number).value_or(0));
}

class Parser {
 public:
  explicit Parser(std::vector<ScriptToken> tokens) : tokens_(std::move(tokens)) {}

  std::optional<ScriptProgram> program() {
    std::optional<ScriptProgram> program = sentences();
    return peek().kind == ScriptTokenKind::end ? std::move(program) : std::nullopt;
  }

 private:
  /// One step further down; false when that is too deep.
  class Descent {
   public:
    explicit Descent(int& depth) : depth_(depth) { ++depth_; }
    ~Descent() { --depth_; }
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;
    explicit operator bool() const { return depth_ <= kMaximumScriptDepth; }

   private:
    int& depth_;
  };

  [[nodiscard]] const ScriptToken& peek() const { return tokens_[position_]; }
  [[nodiscard]] bool isAtWord(QLatin1String word) const {
    return peek().kind == ScriptTokenKind::word && peek().text == word;
  }
  bool take(ScriptTokenKind kind, QLatin1String text) {
    if (peek().kind != kind || peek().text != text) return false;
    ++position_;
    return true;
  }
  bool takeWord(const char* word) { return take(ScriptTokenKind::word, QLatin1String(word)); }
  bool takeSymbol(const char* symbol) { return take(ScriptTokenKind::symbol, QLatin1String(symbol)); }
  bool takeLineEnds() {
    const std::size_t start = position_;
    while (peek().kind == ScriptTokenKind::lineEnd) ++position_;
    return position_ > start;
  }
  /// Null when there is no text here.
  QString takeText() {
    const std::optional<QString> text =
        peek().kind == ScriptTokenKind::literal ? UnicodeTextValue(peek().literal) : std::nullopt;
    if (!text) return {};
    ++position_;
    return *text;
  }
  /// Null when there is no word here that may name a variable.
  QString takeName() {
    const ScriptToken& token = peek();
    if (token.kind != ScriptTokenKind::word || IsOneOf(kReservedWords, token.text) ||
        IsOneOf(kPlaces, token.text) || IsOneOf(kObjects, token.text)) {
      return {};
    }
    ++position_;
    return token.text;
  }

  /// Up to "end" or the end of the text, each on a line of its own.
  std::optional<ScriptProgram> sentences() {
    ScriptProgram program;
    takeLineEnds();
    while (peek().kind != ScriptTokenKind::end && !isAtWord(QLatin1String("end"))) {
      MaybeSentence next = sentence();
      if (!next || (!takeLineEnds() && peek().kind != ScriptTokenKind::end)) return std::nullopt;
      program.push_back(std::move(*next));
    }
    return program;
  }

  MaybeSentence sentence() {
    using SentenceKind = ScriptSentence::Kind;
    if (takeWord("tell")) return tell();
    if (takeWord("set")) return set();
    if (takeWord("keystroke")) return keystroke();
    if (takeWord("delay")) return Sentence(SentenceKind::delay, expression());
    if (takeWord("activate")) return ScriptSentence{SentenceKind::activate, {}, {}, false, {}};
    if (takeWord("return")) {
      const bool isAlone = peek().kind == ScriptTokenKind::lineEnd || peek().kind == ScriptTokenKind::end;
      if (isAlone) return ScriptSentence{SentenceKind::giveBack, {}, {}, false, {}};
      return Sentence(SentenceKind::giveBack, expression());
    }
    if (takeWord("do")) return Sentence(SentenceKind::evaluate, runInWindow());
    takeWord("get");
    return Sentence(SentenceKind::evaluate, expression());
  }

  MaybeSentence tell() {
    const Descent descent(depth_);
    ScriptSentence tell{ScriptSentence::Kind::tell, {}, {}, false, {}};
    if (!descent || !takeWord("application")) return std::nullopt;
    tell.name = takeText();
    if (tell.name.isEmpty()) return std::nullopt;
    if (takeWord("to")) {
      MaybeSentence told = sentence();
      if (!told) return std::nullopt;
      tell.body.push_back(std::move(*told));
      return tell;
    }
    std::optional<ScriptProgram> body = takeLineEnds() ? sentences() : std::nullopt;
    if (!body || !takeWord("end")) return std::nullopt;
    takeWord("tell");
    tell.body = std::move(*body);
    return tell;
  }

  MaybeSentence set() {
    const QString name = takeName();
    if (name.isNull() || !takeWord("to")) return std::nullopt;
    MaybeSentence set = Sentence(ScriptSentence::Kind::set, expression());
    if (set) set->name = name;
    return set;
  }

  MaybeSentence keystroke() {
    MaybeSentence keystroke = Sentence(ScriptSentence::Kind::keystroke, expression());
    if (!keystroke || !takeWord("using")) return keystroke;
    const bool isBraced = takeSymbol("{");
    keystroke->isCommandDown = takeWord("command") && takeWord("down") && (!isBraced || takeSymbol("}"));
    return keystroke->isCommandDown ? std::move(keystroke) : std::nullopt;
  }

  MaybeExpression runInWindow() {
    if (!takeWord("script")) return std::nullopt;
    MaybeExpression script = expression();
    if (!takeWord("window")) return Compound(Kind::runInWindow, std::move(script));
    return Compound(Kind::runInWindow, std::move(script), expression());
  }

  MaybeExpression expression() {
    const Descent descent(depth_);
    if (!descent) return std::nullopt;
    MaybeExpression value = owned();
    if (!takeWord("as")) return value;
    return takeWord("list") ? Compound(Kind::asList, std::move(value)) : std::nullopt;
  }

  MaybeExpression owned() {
    const Descent descent(depth_);
    if (!descent) return std::nullopt;
    if (takeWord("url")) return takeWord("of") ? Compound(Kind::address, owned()) : std::nullopt;
    if (takeWord("properties")) return takeWord("of") ? Compound(Kind::properties, owned()) : std::nullopt;
    if (takeWord("item")) {
      MaybeExpression index = primary();
      return takeWord("of") ? Compound(Kind::item, std::move(index), owned()) : std::nullopt;
    }
    return primary();
  }

  MaybeExpression primary() {
    if (takeSymbol("(")) {
      MaybeExpression inner = expression();
      return takeSymbol(")") ? std::move(inner) : std::nullopt;
    }
    if (takeSymbol("{")) return list();
    const bool isNegative = takeSymbol("-");
    if (peek().kind == ScriptTokenKind::literal) return literal(isNegative);
    if (isNegative) return std::nullopt;
    if (takeWord("true")) return Literal(AEDescriptor(descriptor_type::kTrue, {}));
    if (takeWord("false")) return Literal(AEDescriptor(descriptor_type::kFalse, {}));
    takeWord("the");
    if (takeWord("clipboard")) return ScriptExpression{Kind::clipboard, {}, {}, {}};
    if (peek().kind == ScriptTokenKind::word && IsOneOf(kPlaces, peek().text)) return front();
    const QString name = takeName();
    return name.isNull() ? std::nullopt : MaybeExpression(ScriptExpression{Kind::variable, {}, name, {}});
  }

  MaybeExpression literal(bool isNegative) {
    const AEDescriptor& value = tokens_[position_++].literal;
    if (!isNegative) return Literal(value);
    return UnicodeTextValue(value) ? std::nullopt : Literal(Negative(value));
  }

  MaybeExpression list() {
    ScriptExpression list{Kind::list, {}, {}, {}};
    if (takeSymbol("}")) return list;
    do {
      MaybeExpression item = expression();
      if (!item) return std::nullopt;
      list.operands.push_back(std::move(*item));
    } while (takeSymbol(","));
    return takeSymbol("}") ? MaybeExpression(std::move(list)) : std::nullopt;
  }

  MaybeExpression front() {
    ++position_;  // the place
    takeWord("browser");
    if (peek().kind != ScriptTokenKind::word || !IsOneOf(kObjects, peek().text)) return std::nullopt;
    ++position_;
    if (takeWord("of")) return Compound(Kind::front, owned());
    return ScriptExpression{Kind::front, {}, {}, {}};
  }

  std::vector<ScriptToken> tokens_;
  std::size_t position_ = 0;
  int depth_ = 0;
};

}  // namespace

std::optional<ScriptProgram> CompileScript(QStringView source) {
  std::optional<std::vector<ScriptToken>> tokens = ScriptTokens(source);
  return tokens ? Parser(std::move(*tokens)).program() : std::nullopt;
}

}  // namespace quillforth::platform

// SPDX-License-Identifier: MIT

#include "scripting/ScriptRunner.h"

#include <QHash>
#include <algorithm>
#include <utility>
#include <variant>

#include "scripting/ScriptProgram.h"

namespace quillforth::platform {

namespace {

using common::FourCharCode;

/// What an application shows in front.
struct Shown {
  QString application;
};
/// Nothing; a value; or what stands for something in an application.
using ScriptValue = std::variant<std::monostate, AEDescriptor, Shown>;
/// Nothing when the script fails.
using MaybeValue = std::optional<ScriptValue>;

// How many values a list holds, down to a depth of `depth` lists. More than allowed when some lie deeper.
int ListSize(const AEDescriptor& list, int depth = kMaximumScriptDepth) {
  if (depth == 0) return kMaximumScriptListSize + 1;
  int size = 0;
  for (const AEDescriptor::Item& item : list.items()) {
    size += 1 + ListSize(item.value, depth - 1);
    if (size > kMaximumScriptListSize) break;
  }
  return size;
}

std::optional<AEDescriptor> ListOf(std::vector<AEDescriptor> values) {
  AEDescriptor list(descriptor_type::kList, {});
  for (AEDescriptor& value : values) list.append(std::move(value));
  return ListSize(list) > kMaximumScriptListSize ? std::nullopt : std::optional(std::move(list));
}

MaybeValue ValueOf(std::optional<AEDescriptor> descriptor) {
  return descriptor ? MaybeValue(std::move(*descriptor)) : std::nullopt;
}

class Runner {
 public:
  explicit Runner(ScriptEffects& effects) : effects_(effects) {}

  std::optional<AEDescriptor> run(const ScriptProgram& program) {
    if (!carryOut(program)) return std::nullopt;
    AEDescriptor* value = std::get_if<AEDescriptor>(&result_);
    return value == nullptr ? std::nullopt : std::optional(std::move(*value));
  }

 private:
  /// False when the script fails.
  bool carryOut(const ScriptProgram& program) {
    for (const ScriptSentence& sentence : program) {
      if (hasReturned_) break;
      MaybeValue value = carryOut(sentence);
      if (!value) return false;
      if (sentence.kind != ScriptSentence::Kind::tell) result_ = std::move(*value);
    }
    return true;
  }

  MaybeValue carryOut(const ScriptSentence& sentence) {
    switch (sentence.kind) {
      case ScriptSentence::Kind::tell:
        return tell(sentence);
      case ScriptSentence::Kind::activate:
        return activate();
      case ScriptSentence::Kind::keystroke:
        return keystroke(sentence);
      case ScriptSentence::Kind::delay:
        return delay(*sentence.expression);
      case ScriptSentence::Kind::evaluate:
        return evaluate(*sentence.expression);
      case ScriptSentence::Kind::set:
        return set(sentence);
      case ScriptSentence::Kind::giveBack:
        break;
    }
    hasReturned_ = true;
    return sentence.expression ? evaluate(*sentence.expression) : ScriptValue();
  }

  MaybeValue tell(const ScriptSentence& tell) {
    const QString outer = std::exchange(application_, tell.name);
    result_ = ScriptValue();
    const bool isDone = carryOut(tell.body);
    application_ = outer;
    return isDone ? MaybeValue(ScriptValue()) : std::nullopt;
  }

  MaybeValue activate() {
    if (application_.isNull()) {
      effects_.activateThisProgram();
    } else if (!effects_.activateApplication(application_)) {
      return std::nullopt;
    }
    return ScriptValue();
  }

  MaybeValue keystroke(const ScriptSentence& sentence) {
    const std::optional<QString> characters = text(*sentence.expression);
    if (!characters || !effects_.type({*characters, sentence.isCommandDown})) return std::nullopt;
    return ScriptValue();
  }

  MaybeValue delay(const ScriptExpression& expression) {
    const std::optional<AEDescriptor> value = plainValue(expression);
    if (!value) return std::nullopt;
    const std::optional<std::int32_t> whole = Int32Value(*value);
    const std::optional<double> seconds = whole ? std::optional<double>(*whole) : Float64Value(*value);
    if (!seconds) return std::nullopt;
    const double left = static_cast<double>(delayLeft_.count());
    const std::chrono::milliseconds duration(static_cast<int>(std::clamp(*seconds * 1000, 0.0, left)));
    delayLeft_ -= duration;
    effects_.wait(duration);
    return ScriptValue();
  }

  MaybeValue set(const ScriptSentence& set) {
    MaybeValue value = evaluate(*set.expression);
    if (value) variables_.insert(set.name, *value);
    return value;
  }

  MaybeValue evaluate(const ScriptExpression& expression) {
    using Kind = ScriptExpression::Kind;
    const std::vector<ScriptExpression>& operands = expression.operands;
    switch (expression.kind) {
      case Kind::literal:
        return expression.literal;
      case Kind::list:
        return ValueOf(list(operands));
      case Kind::variable:
        return variable(expression.name);
      case Kind::clipboard:
        return textValue(effects_.clipboardText());
      case Kind::front:
        return front(operands);
      case Kind::address:
        return textValue(address(operands[0]));
      case Kind::properties:
        return ValueOf(properties(operands[0]));
      case Kind::item:
        return ValueOf(item(operands[0], operands[1]));
      case Kind::asList:
        return ValueOf(asList(operands[0]));
      case Kind::runInWindow:
        break;
    }
    return runInWindow(operands);
  }

  static MaybeValue textValue(const std::optional<QString>& text) {
    return text ? MaybeValue(UnicodeTextDescriptor(*text)) : std::nullopt;
  }

  /// Nothing for a value that stands for something in an application.
  std::optional<AEDescriptor> plainValue(const ScriptExpression& expression) {
    MaybeValue value = evaluate(expression);
    AEDescriptor* descriptor = value ? std::get_if<AEDescriptor>(&*value) : nullptr;
    return descriptor == nullptr ? std::nullopt : std::optional(std::move(*descriptor));
  }

  std::optional<QString> text(const ScriptExpression& expression) {
    const std::optional<AEDescriptor> value = plainValue(expression);
    return value ? UnicodeTextValue(*value) : std::nullopt;
  }

  std::optional<BrowserWindow> window(const ScriptExpression& expression) {
    const MaybeValue value = evaluate(expression);
    const Shown* shown = value ? std::get_if<Shown>(&*value) : nullptr;
    return shown == nullptr ? std::nullopt : effects_.frontWindow(shown->application);
  }

  static std::optional<QString> addressOf(const std::optional<BrowserWindow>& window) {
    return window && !window->documentURL.isNull() ? std::optional(window->documentURL) : std::nullopt;
  }
  std::optional<QString> address(const ScriptExpression& expression) { return addressOf(window(expression)); }

  std::optional<AEDescriptor> list(const std::vector<ScriptExpression>& items) {
    std::vector<AEDescriptor> values;
    for (const ScriptExpression& item : items) {
      std::optional<AEDescriptor> value = plainValue(item);
      if (!value) return std::nullopt;
      values.push_back(std::move(*value));
    }
    return ListOf(std::move(values));
  }

  [[nodiscard]] MaybeValue variable(const QString& name) const {
    const auto found = variables_.constFind(name);
    return found == variables_.constEnd() ? std::nullopt : MaybeValue(*found);
  }

  MaybeValue front(const std::vector<ScriptExpression>& containers) {
    if (!containers.empty()) {
      MaybeValue container = evaluate(containers[0]);
      return container && std::holds_alternative<Shown>(*container) ? container : std::nullopt;
    }
    return application_.isNull() ? std::nullopt : MaybeValue(Shown{application_});
  }

  std::optional<AEDescriptor> properties(const ScriptExpression& expression) {
    const std::optional<BrowserWindow> shown = window(expression);
    const std::optional<QString> address = addressOf(shown);
    if (!address) return std::nullopt;
    return ListOf({UnicodeTextDescriptor(shown->title), Int32Descriptor(1), UnicodeTextDescriptor(*address)});
  }

  std::optional<AEDescriptor> item(const ScriptExpression& index, const ScriptExpression& list) {
    const std::optional<AEDescriptor> position = plainValue(index);
    const std::optional<AEDescriptor> values = plainValue(list);
    if (!position || !values || values->type() != descriptor_type::kList) return std::nullopt;
    const AEDescriptor* found = values->descriptorAtIndex(Int32Value(*position).value_or(0));
    return found == nullptr ? std::nullopt : std::optional(*found);
  }

  std::optional<AEDescriptor> asList(const ScriptExpression& expression) {
    std::optional<AEDescriptor> value = plainValue(expression);
    if (!value || value->type() == descriptor_type::kList) return value;
    return ListOf({std::move(*value)});
  }

  // A page could run any script. Only the one that gives its address is supported.
  MaybeValue runInWindow(const std::vector<ScriptExpression>& operands) {
    if (text(operands[0]) != QStringLiteral("location.href")) return std::nullopt;
    if (operands.size() > 1) return textValue(address(operands[1]));
    return application_.isNull() ? std::nullopt : textValue(addressOf(effects_.frontWindow(application_)));
  }

  ScriptEffects& effects_;
  QString application_;  // null outside of a tell
  QHash<QString, ScriptValue> variables_;
  std::chrono::milliseconds delayLeft_ = kMaximumScriptDelay;
  ScriptValue result_;
  bool hasReturned_ = false;
};

}  // namespace

std::optional<AEDescriptor> RunScript(QStringView source, ScriptEffects& effects) {
  const std::optional<ScriptProgram> program = CompileScript(source);
  return program ? Runner(effects).run(*program) : std::nullopt;
}

}  // namespace quillforth::platform

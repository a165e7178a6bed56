// SPDX-License-Identifier: MIT
//
// A text as a script: it does nothing, or what its sentences say within its limits.

#include "fuzz/Fuzz.h"
#include "scripting/ScriptProgram.h"
#include "scripting/ScriptRunner.h"

namespace quillforth::fuzz {

using namespace platform;

namespace {

struct Effects final : ScriptEffects {
  int count = 0;
  std::chrono::milliseconds waited{};

  bool activateApplication(const QString& name) override { return ++count, name != u"Nobody"; }
  void activateThisProgram() override { ++count; }
  std::optional<BrowserWindow> frontWindow(const QString& name) override {
    return ++count, BrowserWindow{name, QStringLiteral("http://h/")};
  }
  bool type(const Keystroke& /*keystroke*/) override { return ++count, true; }
  std::optional<QString> clipboardText() override { return ++count, QStringLiteral("clip"); }
  void wait(std::chrono::milliseconds duration) override {
    Require(duration.count() >= 0, "no pause is negative");
    waited += duration;
  }
};

}  // namespace

void Check(std::string_view input) {
  const QString source = Text(std::string(input));
  const bool isScript = CompileScript(source).has_value();
  Effects effects;
  const bool hasValue = RunScript(source, effects).has_value();
  Require(isScript || (!hasValue && effects.count == 0 && effects.waited.count() == 0),
          "nothing comes of what is no script");
  Require(effects.waited <= kMaximumScriptDelay, "all pauses together are bounded");
}

}  // namespace quillforth::fuzz

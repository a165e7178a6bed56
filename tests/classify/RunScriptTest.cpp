// SPDX-License-Identifier: MIT

#include "classify/NSStringExtensions.h"

#include "scripting/ScriptRunner.h"
#include "tests/support/CaseTable.h"
#include "tests/support/Recorder.h"

namespace quillforth::tests {
namespace {

/// Applications that answer as the head of the table says.
class FakeScriptHost final : public platform::ScriptHost, public platform::ScriptEffects, Recording {
 public:
  explicit FakeScriptHost(CallLog& log) : Recording(log, "") {}
  std::optional<platform::AEDescriptor> compileAndRun(const QString& source) override {
    return platform::RunScript(source, *this);
  }
  bool activateApplication(const QString& name) override {
    return note("activate ", name), name != u"Nobody";
  }
  void activateThisProgram() override { note("activate"); }
  std::optional<platform::BrowserWindow> frontWindow(const QString& name) override {
    note("window ", name);
    if (name == u"Nobody") return std::nullopt;
    return platform::BrowserWindow{{},
                                   QString::fromLatin1(name == u"Blank" ? nullptr : "http://shown.test/")};
  }
  bool type(const platform::Keystroke& key) override {
    return note(key.isCommandDown ? "command-" : "type ", key.characters), true;
  }
  std::optional<QString> clipboardText() override { return note("clipboard"), QStringLiteral("clipped"); }
  void wait(std::chrono::milliseconds time) override { note("wait ", QString::number(time.count())); }
};

TEST(RunScript, GivesTheTextsOfTheTableAndDoesNoMore) {
  auto rows = ReadCases(QUILLFORTH_TEST_DATA "/scripts.tsv", 3);
  for (const std::string growth : {"{a, a}", "{a}"}) {  // lists that double or nest with every sentence
    std::string script = "set a to {1}";
    for (int i = 0; i < 900; ++i) script += "\rset a to " + growth;
    rows.push_back({script + "\r\"end\"", "nil", "-"});
  }
  for (const auto& row : rows) {
    CallLog log;
    FakeScriptHost host(log);
    const std::optional<QString> text = classify::runScript(QString::fromStdString(row[0]), host);
    EXPECT_EQ(text ? text->toStdString() : "nil", row[1]) << row[0].substr(0, 200);
    const std::string effects = log.take();
    EXPECT_EQ(effects.empty() ? "-" : effects, row[2]) << row[0].substr(0, 200);
  }
}

}  // namespace
}  // namespace quillforth::tests

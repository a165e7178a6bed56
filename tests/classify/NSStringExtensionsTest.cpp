// SPDX-License-Identifier: MIT

#include "classify/NSStringExtensions.h"

#include <QFile>
#include <QTemporaryDir>

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

TEST(NSStringExtensions, TextBetweenMarkersIsFoundForwardsAndBackwardsWhateverTheLetterCase) {
  // The longest ones would take minutes in quadratic time.
  for (const auto& row : ReadCases(QUILLFORTH_TEST_DATA "/text_between.tsv", 5)) {
    const auto cell = [&row](std::size_t column) { return QString::fromStdString(row[column]); };
    const QString text = cell(0), start = cell(1), end = cell(2), nothing = QStringLiteral("-");
    EXPECT_EQ(classify::extractBetweenPatternAndPattern(text, start, end).value_or(nothing), cell(3));
    EXPECT_EQ(classify::reverseExtractBetweenPatternAndPattern(text, start, end).value_or(nothing), cell(4));
  }
}

TEST(NSStringExtensions, OnlyAPathOfSomethingThatExistsBecomesAReferenceAndBack) {
  const QTemporaryDir folder;
  const QString link = folder.filePath(QStringLiteral("é"));
  ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("nowhere")), link));
  platform::FileReference reference;
  ASSERT_TRUE(classify::getFSRef(link + u'/' + u'/', &reference));
  EXPECT_EQ(reference.path(), link.toStdString());
  EXPECT_EQ(classify::stringWithFSRef(&reference), link);
  ASSERT_TRUE(QFile::remove(link));
  EXPECT_FALSE(classify::stringWithFSRef(&reference) || classify::stringWithFSRef(nullptr));
  for (const QString& path : {link, QString(), QStringLiteral("."), QStringLiteral("/\0"),
                              QString(QChar(0xD800)), u'/' + QString(5000, u'x')}) {
    EXPECT_FALSE(classify::getFSRef(path, &reference)) << path.toStdString();
  }
  EXPECT_EQ(reference.path(), link.toStdString());
}

}  // namespace
}  // namespace quillforth::tests

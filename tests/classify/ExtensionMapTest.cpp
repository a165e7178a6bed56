// SPDX-License-Identifier: MIT
//
// The extension table and its loader, against a component whose steps fail on command.

#include <gtest/gtest.h>

#include "classify/InternetConfig.h"

namespace quillforth::classify {
namespace {

using common::Status;
using platform::ICMapEntry;
using platform::MakePascalString;

class FakeBundle final : public platform::MainBundle {
 public:
  std::optional<QString> signature = QStringLiteral("QFth");
  std::optional<QString> objectForInfoDictionaryKey(const QString& key) override {
    return key == u"CFBundleSignature" ? signature : std::nullopt;
  }
  std::optional<QString> pathForResource(const QString& /*name*/) override { return std::nullopt; }
};

// Logs one letter a call; the step called `failing` fails.
class FakeComponent final : public platform::InternetConfigComponent {
 public:
  std::vector<std::pair<const char*, const char*>> records;
  char failing = ' ';
  std::int32_t failingIndex = 0;
  std::string log;
  common::FourCharCode creator = 0;

  int countComponents() override { return 0; }
  Status start(common::FourCharCode code) override { return creator = code, step('S'); }
  Status stop() override { return step('s'); }
  Status begin(platform::ICPermission permission) override {
    return step(permission == platform::ICPermission::readOnly ? 'B' : 'W');
  }
  Status end() override { return step('e'); }
  Status getPrefHandle(std::string_view key) override { return step(key == "Mapping" ? 'P' : '?'); }
  void disposeHandle() override { log += 'd'; }
  Status countMapEntries(std::int32_t& count) override {
    count = static_cast<std::int32_t>(records.size());
    return step('C');
  }
  Status getIndMapEntry(std::int32_t index, ICMapEntry& entry) override {
    if (index == failingIndex) return common::kIOError;
    entry.extension = MakePascalString(records.at(static_cast<std::size_t>(index) - 1).first);
    entry.MIMEType = MakePascalString(records.at(static_cast<std::size_t>(index) - 1).second);
    return step('i');
  }

 private:
  Status step(char name) {
    log += name;
    return name == failing ? common::kIOError : common::kNoError;
  }
};

class ExtensionMapLoading : public ::testing::Test {
 protected:
  // "key=type" of every node of a new map in its order.
  std::string load() {
    CExtensionMap map;
    component.log.clear();
    loadExtensionMappings(component, bundle, map);
    std::string text;
    for (const auto& node : map.nodes()) {
      EXPECT_EQ(map.find(node->key.view()), &node->record);
      text.append(node->key.view()).append("=").append(platform::PascalStringView(node->record.MIMEType)) +=
          ' ';
    }
    EXPECT_EQ(map.find(".Html"), nullptr);
    return text;
  }

  FakeComponent component;
  FakeBundle bundle;
};

TEST_F(ExtensionMapLoading, KeepsTheLastRecordInTheFirstOnesPlace) {
  component.records = {
      {".gif", "image/old"}, {".html", "text/html"}, {".HTML", "text/x"}, {".gif", "image/gif"}};
  EXPECT_EQ(load(), ".gif=image/gif .html=text/html .HTML=text/x ");
  EXPECT_EQ(component.log, "SBPCiiiides");
  EXPECT_EQ(component.creator, common::FourCC("QFth"));
}

TEST_F(ExtensionMapLoading, ARecordThatCannotBeFilledCountsAsTheOneBefore) {
  component.records = {{".a", "a/a"}, {".b", "b/b"}, {".c", "c/c"}};
  component.failingIndex = 2;
  EXPECT_EQ(load(), ".a=a/a .c=c/c ");
  component.failingIndex = 1;
  EXPECT_EQ(load(), "= .b=b/b .c=c/c ");
}

TEST_F(ExtensionMapLoading, EveryFailingStepLeavesTheTableEmptyAndAccessClosed) {
  const std::pair<char, const char*> cases[] = {{'S', "S"}, {'B', "SBs"}, {'P', "SBPes"}, {'C', "SBPCedes"}};
  component.records = {{".a", "a/a"}};
  for (const auto& [failing, log] : cases) {
    component.failing = failing;
    EXPECT_EQ(load(), "") << failing;
    EXPECT_EQ(component.log, log);
  }
}

TEST(BundleCreatorCode, IsTheFirstFourBytesOfTheSignature) {
  const std::pair<std::optional<QString>, common::FourCharCode> cases[] = {
      {QString(254, u'a'), 0x61616161},
      {QStringLiteral("\u00e9\u00e9"), 0xc3a9c3a9},
      {QStringLiteral("ab"), 0x61620000},
      {QString(255, u'a'), 0},
      {QString(1, QChar(0xd800)) + QStringLiteral("abc"), 0},
      {std::nullopt, 0}};
  FakeBundle bundle;
  for (const auto& [signature, code] : cases) {
    bundle.signature = signature;
    EXPECT_EQ(bundleCreatorCode(bundle), code) << signature.value_or(QString()).toStdString();
  }
}

}  // namespace
}  // namespace quillforth::classify

// SPDX-License-Identifier: MIT
//
// The extension table and its loader, against a component whose steps fail on command.

#include <gtest/gtest.h>

#include <string>
#include <vector>

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
  std::vector<std::pair<std::string, std::string>> records;
  int components = 1;
  char failing = ' ';
  std::int32_t failingIndex = 0;
  std::string log;
  common::FourCharCode creator = 0;

  int countComponents() override { return components; }
  Status start(common::FourCharCode code) override {
    creator = code;
    return step('S');
  }
  Status stop() override { return step('s'); }
  Status begin(platform::ICPermission permission) override {
    EXPECT_EQ(permission, platform::ICPermission::readOnly);
    return step('B');
  }
  Status end() override { return step('e'); }
  Status getPrefHandle(std::string_view key) override {
    EXPECT_EQ(key, "Mapping");
    return step('P');
  }
  void disposeHandle() override { static_cast<void>(step('d')); }
  Status countMapEntries(std::int32_t& count) override {
    count = static_cast<std::int32_t>(records.size());
    return step('C');
  }
  Status getIndMapEntry(std::int32_t index, ICMapEntry& entry) override {
    if (index == failingIndex) return step('i', -50);
    const auto& [extension, type] = records.at(static_cast<std::size_t>(index) - 1);
    entry = {};
    entry.extension = MakePascalString(extension);
    entry.MIMEType = MakePascalString(type);
    return step('i');
  }

 private:
  Status step(char name, Status status = common::kNoError) {
    log += name;
    return name == failing ? common::kIOError : status;
  }
};

class ExtensionMapLoading : public ::testing::Test {
 protected:
  void load() { loadExtensionMappings(component, bundle, map); }
  std::string listing() const {
    std::string text;
    for (const auto& node : map.nodes()) {
      text += std::string(node->key.view()) + "=" +
              std::string(platform::PascalStringView(node->record.MIMEType)) + " ";
    }
    return text;
  }

  FakeComponent component;
  FakeBundle bundle;
  CExtensionMap map;
};

TEST_F(ExtensionMapLoading, KeepsTheLastRecordInTheFirstOnesPlace) {
  component.records = {
      {".gif", "image/old"}, {".html", "text/html"}, {".HTML", "text/x"}, {".gif", "image/gif"}};
  load();
  EXPECT_EQ(listing(), ".gif=image/gif .html=text/html .HTML=text/x ");
  EXPECT_EQ(component.log, "SBPCiiiides");
  EXPECT_EQ(component.creator, common::FourCC("QFth"));
  EXPECT_EQ(map.find(".Html"), nullptr);
  ASSERT_NE(map.find(".gif"), nullptr);
  EXPECT_EQ(map.longestKey(), 5U);
  ICMapEntry other{};
  EXPECT_EQ(map.findOrInsert(common::BoundedText(".gif"), other).record.MIMEType,
            MakePascalString("image/gif"));
}

TEST_F(ExtensionMapLoading, CutsNothingShorterThanAPascalStringAndEndsAKeyAtANul) {
  component.records = {{std::string(300, 'x'), "a/b"}, {std::string(".a\0b", 4), "c/d"}};
  load();
  ASSERT_EQ(map.size(), 2U);
  EXPECT_NE(map.find(std::string(255, 'x')), nullptr);
  EXPECT_NE(map.find(".a"), nullptr);
}

TEST_F(ExtensionMapLoading, ARecordThatCannotBeFilledCountsAsTheOneBefore) {
  component.records = {{".a", "a/a"}, {".b", "b/b"}, {".c", "c/c"}};
  component.failingIndex = 2;
  load();
  EXPECT_EQ(listing(), ".a=a/a .c=c/c ");
  component.failingIndex = 1;
  CExtensionMap fresh;
  loadExtensionMappings(component, bundle, fresh);
  EXPECT_NE(fresh.find(""), nullptr);
}

TEST_F(ExtensionMapLoading, EveryFailingStepLeavesTheTableEmptyAndAccessClosed) {
  const std::pair<char, const char*> cases[] = {{'S', "S"}, {'B', "SBs"}, {'P', "SBPes"}, {'C', "SBPCedes"}};
  for (const auto& [failing, log] : cases) {
    component.records = {{".a", "a/a"}};
    component.failing = failing;
    component.log.clear();
    load();
    EXPECT_EQ(map.size(), 0U) << failing;
    EXPECT_EQ(component.log, log);
  }
}

TEST_F(ExtensionMapLoading, OperationsRefuseInTheWrongState) {
  component.components = 0;
  {
    CInternetConfig config(component, 7);
    ICMapEntry record{};
    EXPECT_FALSE(config.available());
    EXPECT_EQ(config.BeginMapping(), common::kNotStarted);
    EXPECT_EQ(config.EndMapping(), common::kNotStarted);
    EXPECT_EQ(config.Stop(), common::kNotStarted);
    EXPECT_EQ(config.Start(), common::kNoError);
    EXPECT_FALSE(config.NextMapEntry(record));
    EXPECT_EQ(config.EndMapping(), common::kNotStarted);
  }
  EXPECT_EQ(component.log, "Ss") << "the end of the object stops the component";
}

TEST(BundleCreatorCode, IsTheFirstFourBytesOfTheSignature) {
  const std::pair<std::optional<QString>, common::FourCharCode> cases[] = {
      {QStringLiteral("QFth"), common::FourCC("QFth")},
      {QStringLiteral("abcdef"), common::FourCC("abcd")},
      {QStringLiteral("ab"), 0x61620000},
      {QStringLiteral("\u00e9\u00e9"), 0xc3a9c3a9},
      {QString(QChar(0xd800)) + QStringLiteral("abc"), 0},
      {QString(254, u'a'), common::FourCC("aaaa")},
      {QString(255, u'a'), 0},
      {std::nullopt, 0}};
  for (const auto& [signature, code] : cases) {
    FakeBundle bundle;
    bundle.signature = signature;
    EXPECT_EQ(bundleCreatorCode(bundle), code) << signature.value_or(QString()).toStdString();
  }
}

}  // namespace
}  // namespace quillforth::classify

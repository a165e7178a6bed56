// SPDX-License-Identifier: MIT
//
// Apple-event values, and the way from a sender to a handler.

#include "appleevents/AppleEvents.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include "appleevents/AppleEventManager.h"
#include "appleevents/FSRefTable.h"
#include "net/URL.h"

namespace quillforth::platform {
namespace {

using common::FourCC;
using common::Status;
namespace type = descriptor_type;
namespace keyword = event_keyword;

AEDescriptor Text(const char* bytes, common::FourCharCode textType = type::kUTF8Text) {
  return {textType, QByteArray(bytes)};
}

AEDescriptor Specifier() {
  return ObjectSpecifier(FourCC("file"), {}, key_form::kName, UnicodeTextDescriptor(u"Linux:a"));
}

TEST(AppleEvents, ACoercionGivesTheSameValueOrIsRefused) {
  AEDescriptor incomplete(type::kRecord, {});
  AEDescriptor record = incomplete;
  const AEDescriptor specifier = Specifier();
  for (const auto& field : specifier.items()) record.setField(field.keyword, field.value);
  incomplete.setField(keyword::kKeyData, UnicodeTextDescriptor(u"x"));
  const char16_t loneSurrogate[] = {u'a', 0xD800, 0};
  // From, to, and what comes of it; nothing: refused.
  const std::tuple<AEDescriptor, common::FourCharCode, std::optional<AEDescriptor>> cases[] = {
      {UnicodeTextDescriptor(u"aé😀"), type::kUTF8Text, Text("aé😀")},
      {UnicodeTextDescriptor(u"\uFEFFmark"), type::kText, Text("\xEF\xBB\xBFmark", type::kText)},
      {UnicodeTextDescriptor(loneSurrogate), type::kUTF8Text, std::nullopt},
      {Text("aé😀"), type::kUnicodeText, UnicodeTextDescriptor(u"aé😀")},
      {Text("\xEF\xBB\xBFmark", type::kText), type::kUnicodeText, UnicodeTextDescriptor(u"\uFEFFmark")},
      {Text("a\xFF"), type::kUnicodeText, std::nullopt},
      {Int16Descriptor(-2), type::kInt32, Int32Descriptor(-2)},
      {Int32Descriptor(-32768), type::kInt16, Int16Descriptor(-32768)},
      {Int32Descriptor(32768), type::kInt16, std::nullopt},
      {{type::kInt32, "abc"}, type::kInt16, std::nullopt},
      {Int16Descriptor(7), type::kUnicodeText, UnicodeTextDescriptor(u"7")},
      {record, type::kObjectSpecifier, specifier},
      {specifier, type::kRecord, record},
      {incomplete, type::kObjectSpecifier, std::nullopt},
      {record, type::kWildcard, record},
      {{FourCC("furl"), "data"}, FourCC("fsrf"), std::nullopt},
      {{}, type::kUnicodeText, AEDescriptor()},
  };
  for (const auto& [from, to, expected] : cases) {
    const DescriptorResult result = CoerceDescriptor(from, to);
    EXPECT_EQ(result.status, expected ? common::kNoError : Status{-1700}) << from.data().toStdString();
    EXPECT_EQ(result.descriptor, expected.value_or(AEDescriptor())) << from.data().toStdString();
  }
}

TEST(AppleEvents, AFileReferenceMeansAFileOnlyAsItWasMadeAndNotForEver) {
  FSRefTable table;
  const FileReference file("/a %\xFF");
  const DescriptorResult coerced = table.coerce({type::kFileURL, FileURL(file)});
  const QByteArray made = coerced.descriptor.data();
  EXPECT_EQ(made.size(), 80);
  EXPECT_EQ(table.fileOf(made), file);
  EXPECT_EQ(table.coerce(coerced.descriptor).descriptor, coerced.descriptor);
  EXPECT_EQ(table.coerce(Text("/a")).status, -1700);
  const QByteArray forged = made.first(79) + static_cast<char>(~made[79]);
  const QByteArray younger = QByteArray(7, '\0') + '\1' + made.sliced(8);
  for (const QByteArray& bytes : {forged, younger, made.first(79), made + '\0', QByteArray()})
    EXPECT_FALSE(table.fileOf(bytes)) << bytes.toHex().toStdString();
  for (int i = 0; i < 1024; ++i) EXPECT_TRUE(table.fileOf(table.makeReference(file)));
  EXPECT_FALSE(table.fileOf(made));
}

class AppleEventManagerTest : public ::testing::Test {
 protected:
  AppleEventManagerTest() {
    dispatcher_.installHandler(FourCC("core"), FourCC("getd"),
                               [this](const AppleEvent& event, AppleEvent& reply) {
                                 received_.push_back(event);
                                 reply.setParameter(keyword::kDirectObject, Text("answer"));
                                 return handlerStatus_;
                               });
    manager_.registerTarget(FourCC("MACS"), dispatcher_);
  }

  static AppleEvent Event(const char (&eventID)[5], const char* target = "MACS") {
    return {FourCC("core"), FourCC(eventID), {FourCC("sign"), target}};
  }

  AppleEventDispatcher dispatcher_;
  AppleEventManager manager_;
  AppleEvent reply_;
  std::vector<AppleEvent> received_;
  Status handlerStatus_ = common::kNoError;
};

TEST_F(AppleEventManagerTest, AWaitingSenderGetsTheHandlersAnswerOrFailure) {
  ASSERT_EQ(manager_.send(Event("getd"), {}, reply_), common::kNoError);
  ASSERT_EQ(manager_.send({FourCC("core"), FourCC("getd"), Event("getd").target(), 500, 9}, {}, reply_), 0);
  ASSERT_EQ(received_.size(), 2U);
  EXPECT_GT(received_[0].returnID(), 0);
  EXPECT_EQ(received_[1].returnID(), 500);
  EXPECT_EQ(reply_.returnID(), 500);
  EXPECT_EQ(reply_.transactionID(), 9);
  EXPECT_EQ(reply_.eventID(), FourCC("ansr"));
  EXPECT_EQ(reply_.parameter(keyword::kDirectObject, type::kUnicodeText).descriptor,
            UnicodeTextDescriptor(u"answer"));
  EXPECT_EQ(reply_.parameter(keyword::kErrorNumber, type::kInt16).status, -1701);
  handlerStatus_ = -43;
  ASSERT_EQ(manager_.send(Event("getd"), {}, reply_), common::kNoError);
  EXPECT_EQ(reply_.parameter(keyword::kErrorNumber, type::kInt16).descriptor, Int16Descriptor(-43));
  ASSERT_EQ(manager_.send(Event("quit"), {}, reply_), common::kNoError);
  EXPECT_EQ(reply_.parameter(keyword::kErrorNumber, type::kInt16).descriptor, Int16Descriptor(-1708));
}

TEST_F(AppleEventManagerTest, ASendThatReachesNobodyFails) {
  EXPECT_EQ(manager_.send(Event("getd", "none"), {}, reply_), -600);
  EXPECT_EQ(manager_.send({FourCC("core"), FourCC("getd"), Text("MACS")}, {}, reply_), -1716);
  EXPECT_TRUE(reply_.isNull());
  EXPECT_TRUE(received_.empty());
}

TEST_F(AppleEventManagerTest, WithoutWaitingTheEventIsDeliveredLaterUnlessTheTargetHasGone) {
  SendOptions options;
  options.mode = SendMode::noReply;
  ASSERT_EQ(manager_.send(Event("getd"), options, reply_), common::kNoError);
  EXPECT_TRUE(reply_.isNull() && received_.empty());
  QCoreApplication::processEvents();
  EXPECT_EQ(received_.size(), 1U);
  ASSERT_EQ(manager_.send(Event("getd"), options, reply_), common::kNoError);
  manager_.unregisterTarget(FourCC("MACS"));
  QCoreApplication::processEvents();
  EXPECT_EQ(received_.size(), 1U);
}

}  // namespace
}  // namespace quillforth::platform

// SPDX-License-Identifier: MIT
//
// The events that read and write comments: what the Finder sees of them, and what becomes of its answers.

#include "fileops/FinderComment.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

namespace quillforth::fileops {
namespace {

using common::FourCC;
using common::Status;
using platform::AEDescriptor;
using platform::AppleEvent;
using platform::FileReference;
using platform::Int16Descriptor;
using platform::Int32Descriptor;
using platform::SendMode;
using platform::UnicodeTextDescriptor;

bool OtherIdleFunction(platform::IdleRequest& /*request*/) {
  return false;
}

class FinderCommentTest : public ::testing::Test, public platform::AppleEventSender {
 protected:
  FinderCommentTest() : file_(folder_.filePath(QStringLiteral("a b:c.txt")).toStdString()) {
    std::ofstream(file_.path()) << "content";
    for (const common::FourCharCode eventID : {FourCC("getd"), FourCC("setd")}) {
      finder_.installHandler(FourCC("core"), eventID, [this](const auto& event, AppleEvent& reply) {
        received_.push_back(event);
        for (const auto& item : answer_.items()) reply.setParameter(item.keyword, item.value);
        return common::kNoError;
      });
    }
    manager_.registerTarget(FourCC("MACS"), finder_);
  }
  ~FinderCommentTest() override { finderEventIdleFunction = &FinderEventIdleProc; }

  Status send(const AppleEvent& event, const platform::SendOptions& options, AppleEvent& reply) override {
    options_ = options;
    sent_.push_back(event);
    return sendStatus_ != common::kNoError ? sendStatus_ : manager_.send(event, options, reply);
  }

  void answer(common::FourCharCode keyword, const AEDescriptor& value) {
    answer_ = AEDescriptor(FourCC("reco"), {});
    answer_.setField(keyword, value);
  }

  // The one event so far, as it was sent and as it arrived, has all the fields that it should have.
  void expectEvent(const char (&eventID)[5], AEDescriptor item, const AEDescriptor* data) {
    ASSERT_EQ(sent_.size(), 1U);
    ASSERT_EQ(received_.size(), 1U);
    EXPECT_EQ(sent_[0].returnID(), -1);
    AEDescriptor expected(FourCC("reco"), {});
    AEDescriptor comment(FourCC("obj "), {});
    comment.setField(FourCC("form"), {FourCC("enum"), "prop"});
    comment.setField(FourCC("want"), {FourCC("type"), "prop"});
    comment.setField(FourCC("seld"), {FourCC("type"), "comt"});
    comment.setField(FourCC("from"), std::move(item));
    expected.setField(FourCC("----"), comment);
    if (data != nullptr) expected.setField(FourCC("data"), *data);
    for (const AppleEvent& event : {sent_[0], received_[0]}) {
      EXPECT_EQ(event.eventClass(), FourCC("core"));
      EXPECT_EQ(event.eventID(), FourCC(eventID));
      EXPECT_EQ(event.target(), AEDescriptor(FourCC("sign"), "MACS"));
      EXPECT_EQ(event.transactionID(), 0);
      EXPECT_EQ(event.parameters(), expected);
    }
  }

  void expectOptions(SendMode mode, platform::IdleFunction idle) const {
    EXPECT_EQ(static_cast<int>(options_.mode), static_cast<int>(mode));
    EXPECT_EQ(options_.priority, 0);
    EXPECT_EQ(options_.timeoutTicks, -2);
    EXPECT_EQ(options_.idle, idle);
  }

  static AEDescriptor Item(const char* itemClass, const QString& path) {
    AEDescriptor item(FourCC("obj "), {});
    item.setField(FourCC("form"), {FourCC("enum"), "name"});
    item.setField(FourCC("want"), {FourCC("type"), itemClass});
    item.setField(FourCC("seld"), UnicodeTextDescriptor(path));
    item.setField(FourCC("from"), {FourCC("null"), {}});
    return item;
  }
  QString hfsFolder() const { return QStringLiteral("Linux") + folder_.path().replace(u'/', u':') + u':'; }

  QTemporaryDir folder_;
  FileReference file_;
  platform::AppleEventDispatcher finder_;
  platform::AppleEventManager manager_;
  AEDescriptor answer_{FourCC("reco"), {}};
  std::vector<AppleEvent> sent_;
  std::vector<AppleEvent> received_;
  platform::SendOptions options_;
  Status sendStatus_ = common::kNoError;
};

TEST_F(FinderCommentTest, GetAsksForAFilesCommentAndWaits) {
  answer(FourCC("----"), UnicodeTextDescriptor(u"a comment é"));
  EXPECT_EQ(GetFinderComment(*this, file_), QStringLiteral("a comment é"));
  expectEvent("getd", Item("file", hfsFolder() + QStringLiteral("a b/c.txt")), nullptr);
  expectOptions(SendMode::waitReply, &FinderEventIdleProc);
}

TEST_F(FinderCommentTest, SetSendsAFoldersCommentAndWaits) {
  const AEDescriptor text = UnicodeTextDescriptor(u"x\n😀");
  EXPECT_EQ(SetFinderComment(*this, FileReference(folder_.path().toStdString()), QStringLiteral("x\n😀")), 0);
  expectEvent("setd", Item("cobj", hfsFolder()), &text);
  expectOptions(SendMode::waitReply, &FinderEventIdleProc);
}

TEST_F(FinderCommentTest, ALinkToAFolderIsAFileAndAnEmptyCommentAnEmptyText) {
  const QString link = folder_.filePath(QStringLiteral("link"));
  std::filesystem::create_directory_symlink(folder_.path().toStdString(), link.toStdString());
  const AEDescriptor empty(FourCC("utxt"), {});
  EXPECT_EQ(
      SendFinderComment(*this, FileReference(link.toStdString()), QStringLiteral(""), &OtherIdleFunction), 0);
  expectEvent("setd", Item("file", hfsFolder() + QStringLiteral("link")), &empty);
  expectOptions(SendMode::waitReply, &OtherIdleFunction);
}

TEST_F(FinderCommentTest, WithoutIdleFunctionGetRefusesAndSetDoesNotWait) {
  finderEventIdleFunction = nullptr;
  answer(FourCC("errn"), Int16Descriptor(-43));
  QString comment;
  EXPECT_EQ(CopyFinderComment(*this, file_, &comment, nullptr), -50);
  EXPECT_TRUE(GetFinderComment(*this, file_).isNull());
  EXPECT_TRUE(sent_.empty());
  EXPECT_EQ(SetFinderComment(*this, file_, QStringLiteral("x")), common::kNoError);
  expectOptions(SendMode::noReply, nullptr);
  EXPECT_TRUE(received_.empty());
  QCoreApplication::processEvents();
  EXPECT_EQ(received_.size(), 1U);
}

TEST_F(FinderCommentTest, AnswersBecomeStatusAndText) {
  const AEDescriptor text = UnicodeTextDescriptor(u"t");
  const AEDescriptor list(FourCC("list"), {});
  const struct {
    common::FourCharCode keyword;
    Status status;
    AEDescriptor value;
    QString text;
  } cases[] = {
      {FourCC("----"), 0, text, QStringLiteral("t")},
      {FourCC("----"), 0, UnicodeTextDescriptor(u""), QStringLiteral("")},
      {FourCC("----"), 0, {FourCC("utxt"), QByteArray("t\0x", 3)}, QStringLiteral("t")},
      {FourCC("----"), 0, {FourCC("utf8"), "é"}, QStringLiteral("é")},
      {FourCC("----"), 0, {FourCC("TEXT"), "\xFF"}, QString()},
      {FourCC("----"), 0, list, QString()},
      {FourCC("----"), 0, {}, QString()},
      {FourCC("none"), 0, text, QString()},
      {FourCC("errn"), -43, Int16Descriptor(-43), QString()},
      {FourCC("errn"), -5000, Int32Descriptor(-5000), QString()},
      {FourCC("errn"), 0, Int16Descriptor(0), QString()},
      {FourCC("errn"), -1700, Int32Descriptor(70000), QString()},
      {FourCC("errn"), -1700, text, QString()},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    answer(cases[i].keyword, cases[i].value);
    QString comment = QStringLiteral("before");
    EXPECT_EQ(CopyFinderComment(*this, file_, &comment, &FinderEventIdleProc), cases[i].status)
        << "case " << i;
    EXPECT_EQ(comment, cases[i].text) << "case " << i;
    EXPECT_EQ(comment.isNull(), cases[i].text.isNull()) << "case " << i;
    EXPECT_EQ(SetFinderComment(*this, file_, QStringLiteral("x")), cases[i].status) << "case " << i;
  }
  QString string;
  EXPECT_EQ(CopyStringFromDescriptor(list, &string), -1700);
  EXPECT_EQ(ReplyErrorNumber(AppleEvent()), common::kNoError);
}

TEST_F(FinderCommentTest, MissingArgumentsAndFailedSendsKeepTheirStatus) {
  QString comment;
  AEDescriptor descriptor;
  EXPECT_EQ(CopyFinderComment(*this, file_, nullptr, &FinderEventIdleProc), -50);
  EXPECT_EQ(CopyFinderComment(*this, FileReference(), &comment, &FinderEventIdleProc), -50);
  EXPECT_EQ(SetFinderComment(*this, FileReference(), comment), -50);
  EXPECT_EQ(SetFinderComment(*this, file_, QString()), -50);
  EXPECT_EQ(MakeUnicodeTextDescriptor(QStringLiteral("x"), nullptr), -50);
  EXPECT_EQ(MakeFinderItemSpecifier(FileReference(file_.path() + "x"), &descriptor), -4960);
  EXPECT_EQ(MakeFinderItemSpecifier(FileReference("."), &descriptor), -4960);
  EXPECT_TRUE(sent_.empty());
  sendStatus_ = -600;
  EXPECT_EQ(SetFinderComment(*this, file_, QStringLiteral("x")), -600);
  EXPECT_EQ(CopyFinderComment(*this, file_, &comment, &FinderEventIdleProc), -600);
}

TEST(FinderEventIdleProc, AsksForTenTicksAndGoesOn) {
  platform::IdleRequest request{1, platform::MouseRegion{}};
  EXPECT_FALSE(FinderEventIdleProc(request));
  EXPECT_EQ(request.sleepTicks, 10);
  EXPECT_FALSE(request.mouseRegion);
}

TEST(DiscardDescriptorDeathTest, ANullPointerEndsTheProgramWithFileLineAndExpression) {
  EXPECT_DEATH(DiscardDescriptor(nullptr), "FinderComment.cpp:[0-9]+: failed assertion `desc != NULL'\n");
}

}  // namespace
}  // namespace quillforth::fileops

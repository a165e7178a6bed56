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

using namespace platform;
using common::FourCC;
using common::Status;

class FinderCommentTest : public ::testing::Test, public AppleEventSender {
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

  Status send(const AppleEvent& event, const SendOptions& options, AppleEvent& reply) override {
    options_ = options;
    sent_ = event;
    return sendStatus_ != common::kNoError ? sendStatus_ : manager_.send(event, options, reply);
  }

  // The last event, as it was sent and as it arrived, has all the fields that it should have.
  void expectEvent(const char (&eventID)[5], const AEDescriptor& item, const AEDescriptor* data) {
    ASSERT_FALSE(received_.empty());
    EXPECT_EQ(sent_.returnID(), -1);
    AEDescriptor expected(FourCC("reco"), {});
    expected.setField(FourCC("----"), Specifier("prop", "prop", {FourCC("type"), "comt"}, item));
    if (data != nullptr) expected.setField(FourCC("data"), *data);
    for (const AppleEvent& event : {sent_, received_.back()}) {
      EXPECT_EQ(event.eventClass(), FourCC("core"));
      EXPECT_EQ(event.eventID(), FourCC(eventID));
      EXPECT_EQ(event.target(), AEDescriptor(FourCC("sign"), "MACS"));
      EXPECT_EQ(event.transactionID(), 0);
      EXPECT_EQ(event.parameters(), expected);
    }
    EXPECT_EQ(static_cast<int>(options_.mode), 3);
    EXPECT_EQ(options_.priority, 0);
    EXPECT_EQ(options_.timeoutTicks, -2);
    EXPECT_EQ(options_.idle, &FinderEventIdleProc);
  }

  static AEDescriptor Specifier(const char* form, const char* want, AEDescriptor seld, AEDescriptor from) {
    AEDescriptor specifier(FourCC("obj "), {});
    specifier.setField(FourCC("form"), {FourCC("enum"), form});
    specifier.setField(FourCC("want"), {FourCC("type"), want});
    specifier.setField(FourCC("seld"), std::move(seld));
    specifier.setField(FourCC("from"), std::move(from));
    return specifier;
  }

  QTemporaryDir folder_;
  FileReference file_;
  AppleEventDispatcher finder_;
  AppleEventManager manager_;
  AEDescriptor answer_{FourCC("reco"), {}};
  AppleEvent sent_;
  std::vector<AppleEvent> received_;
  SendOptions options_;
  Status sendStatus_ = common::kNoError;
};

TEST_F(FinderCommentTest, TheFinderSeesEveryFieldOfBothEvents) {
  const std::string folder = folder_.path().toStdString();
  std::filesystem::create_directory_symlink(folder, folder + "/link");
  const QString hfsFolder = QStringLiteral("Linux") + folder_.path().replace(u'/', u':') + u':';
  const std::tuple<std::string, const char*, QString, QString> items[] = {
      {file_.path(), "file", hfsFolder + QStringLiteral("a b/c.txt"), QStringLiteral("x\n😀")},
      {folder, "cobj", hfsFolder, QStringLiteral("é")},
      {folder + "/link", "file", hfsFolder + QStringLiteral("link"), QStringLiteral("")},
  };
  for (const auto& [path, itemClass, hfsPath, comment] : items) {
    const AEDescriptor item = Specifier("name", itemClass, UnicodeTextDescriptor(hfsPath), {});
    const AEDescriptor text = UnicodeTextDescriptor(comment);
    answer_.setField(FourCC("----"), text);
    EXPECT_EQ(GetFinderComment(*this, FileReference(path)), comment);
    expectEvent("getd", item, nullptr);
    EXPECT_EQ(SetFinderComment(*this, FileReference(path), comment), common::kNoError);
    expectEvent("setd", item, &text);
  }
}

TEST_F(FinderCommentTest, WithoutIdleFunctionGetRefusesAndSetDoesNotWait) {
  finderEventIdleFunction = nullptr;
  answer_.setField(FourCC("errn"), Int16Descriptor(-43));
  QString comment;
  EXPECT_EQ(CopyFinderComment(*this, file_, &comment, nullptr), -50);
  EXPECT_TRUE(GetFinderComment(*this, file_).isNull());
  EXPECT_TRUE(sent_.isNull());
  EXPECT_EQ(SetFinderComment(*this, file_, QStringLiteral("x")), common::kNoError);
  EXPECT_EQ(static_cast<int>(options_.mode), 1);
  EXPECT_EQ(options_.idle, nullptr);
  EXPECT_TRUE(received_.empty());
  QCoreApplication::processEvents();
  EXPECT_EQ(received_.size(), 1U);
}

TEST_F(FinderCommentTest, AnswersBecomeStatusAndText) {
  const AEDescriptor text = UnicodeTextDescriptor(u"t");
  const AEDescriptor list(FourCC("list"), {});
  const std::tuple<common::FourCharCode, Status, AEDescriptor, QString> cases[] = {
      {FourCC("----"), 0, text, QStringLiteral("t")},
      {FourCC("----"), 0, UnicodeTextDescriptor(u""), QStringLiteral("")},
      {FourCC("----"), 0, {FourCC("utxt"), QByteArray("t\0x", 3)}, QStringLiteral("t")},
      {FourCC("----"), 0, {FourCC("TEXT"), "\xFF"}, QString()},
      {FourCC("----"), 0, list, QString()},
      {FourCC("none"), 0, text, QString()},
      {FourCC("errn"), -43, Int16Descriptor(-43), QString()},
      {FourCC("errn"), -5000, Int32Descriptor(-5000), QString()},
      {FourCC("errn"), 0, Int16Descriptor(0), QString()},
      {FourCC("errn"), -1700, Int32Descriptor(70000), QString()},
      {FourCC("errn"), -1700, text, QString()},
  };
  for (const auto& [keyword, status, value, expected] : cases) {
    SCOPED_TRACE(expected.toStdString());
    answer_ = AEDescriptor(FourCC("reco"), {});
    answer_.setField(keyword, value);
    QString comment = QStringLiteral("before");
    EXPECT_EQ(CopyFinderComment(*this, file_, &comment, &FinderEventIdleProc), status);
    EXPECT_EQ(comment, expected);
    EXPECT_EQ(comment.isNull(), expected.isNull());
    EXPECT_EQ(SetFinderComment(*this, file_, QStringLiteral("x")), status);
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
  EXPECT_TRUE(sent_.isNull());
  sendStatus_ = -600;
  EXPECT_EQ(SetFinderComment(*this, file_, QStringLiteral("x")), -600);
  EXPECT_EQ(CopyFinderComment(*this, file_, &comment, &FinderEventIdleProc), -600);
}

TEST(FinderEventIdleProc, AsksForTenTicksAndGoesOn) {
  IdleRequest request{1, MouseRegion{}};
  EXPECT_FALSE(FinderEventIdleProc(request));
  EXPECT_EQ(request.sleepTicks, 10);
  EXPECT_FALSE(request.mouseRegion);
}

TEST(DiscardDescriptorDeathTest, ANullPointerEndsTheProgramWithFileLineAndExpression) {
  EXPECT_DEATH(DiscardDescriptor(nullptr), "FinderComment.cpp:[0-9]+: failed assertion `desc != NULL'\n");
}

}  // namespace
}  // namespace quillforth::fileops

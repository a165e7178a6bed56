// SPDX-License-Identifier: MIT

#include "fileops/FinderComment.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <optional>
#include <thread>

#include "appleevents/HFSPath.h"

namespace quillforth::fileops {

namespace {

// A check of what callers inside the program promise. Unless `holds`, it prints the caller's file and line
// with `expression` on standard error and ends the program.
void Assert(bool holds, const char* expression, const char* file = __builtin_FILE(),
            unsigned line = __builtin_LINE()) {
  if (holds) return;
  std::fprintf(stderr, "%s:%u: failed assertion `%s'\n", file, line, expression);
  std::abort();
}

}  // namespace

using common::Status;
using platform::AEDescriptor;
using platform::AppleEvent;
namespace finder = platform::finder;
namespace keyword = platform::event_keyword;
namespace type = platform::descriptor_type;

platform::IdleFunction finderEventIdleFunction = &FinderEventIdleProc;

bool FinderEventIdleProc(platform::IdleRequest& request) {
  request.sleepTicks = 10;
  request.mouseRegion.reset();
  std::this_thread::yield();
  return false;
}

namespace {

// The comment property of `item`.
AEDescriptor CommentSpecifier(const AEDescriptor& item) {
  return platform::ObjectSpecifier(finder::kPropertyClass, item, platform::key_form::kProperty,
                                   platform::CodeDescriptor(type::kType, finder::kCommentProperty));
}

AppleEvent FinderEvent(common::FourCharCode eventID, const AEDescriptor& item) {
  AppleEvent event(finder::kCoreSuite, eventID,
                   platform::CodeDescriptor(type::kApplicationSignature, finder::kSignature),
                   platform::kAutoGenerateReturnID, platform::kAnyTransactionID);
  event.setParameter(keyword::kDirectObject, CommentSpecifier(item));
  return event;
}

}  // namespace

QString GetFinderComment(platform::AppleEventSender& events, const platform::FileReference& item) {
  QString comment;
  const Status status = CopyFinderComment(events, item, &comment, finderEventIdleFunction);
  return status == common::kNoError ? comment : QString();
}

Status SetFinderComment(platform::AppleEventSender& events, const platform::FileReference& item,
                        const QString& comment) {
  return SendFinderComment(events, item, comment, finderEventIdleFunction);
}

Status CopyFinderComment(platform::AppleEventSender& events, const platform::FileReference& item,
                         QString* comment, platform::IdleFunction idle) {
  if (comment == nullptr || idle == nullptr) return common::kBadParameter;
  *comment = QString();
  AEDescriptor specifier;
  Status status = MakeFinderItemSpecifier(item, &specifier);
  if (status != common::kNoError) return status;
  const AppleEvent event = FinderEvent(finder::kGetData, specifier);
  DiscardDescriptor(&specifier);
  AEDescriptor result;
  status = SendEventForResult(events, event, type::kUnicodeText, idle, &result);
  if (status == common::kNoError) status = CopyStringFromDescriptor(result, comment);
  DiscardDescriptor(&result);
  return status;
}

Status SendFinderComment(platform::AppleEventSender& events, const platform::FileReference& item,
                         const QString& comment, platform::IdleFunction idle) {
  AEDescriptor specifier;
  Status status = MakeFinderItemSpecifier(item, &specifier);
  if (status != common::kNoError) return status;
  AEDescriptor text;
  status = MakeUnicodeTextDescriptor(comment, &text);
  if (status != common::kNoError) return status;
  AppleEvent event = FinderEvent(finder::kSetData, specifier);
  event.setParameter(keyword::kData, text);
  DiscardDescriptor(&specifier);
  DiscardDescriptor(&text);
  return SendEventCheckReply(events, event, idle);
}

Status MakeFinderItemSpecifier(const platform::FileReference& item, AEDescriptor* specifier) {
  if (item.isEmpty() || specifier == nullptr) return common::kBadParameter;
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::symlink_status(item.path(), error);
  if (error || !std::filesystem::exists(status)) return common::kCoreFoundationFailure;
  const bool isDirectory = std::filesystem::is_directory(status);
  const std::optional<QString> path = platform::HFSPath({item.path(), isDirectory});
  if (!path) return common::kCoreFoundationFailure;
  AEDescriptor name;
  const Status made = MakeUnicodeTextDescriptor(*path, &name);
  if (made != common::kNoError) return made;
  *specifier = platform::ObjectSpecifier(isDirectory ? finder::kItemClass : finder::kFileClass,
                                         AEDescriptor(), platform::key_form::kName, name);
  return common::kNoError;
}

Status MakeUnicodeTextDescriptor(const QString& text, AEDescriptor* descriptor) try {
  if (text.isNull() || descriptor == nullptr) return common::kBadParameter;
  *descriptor = platform::UnicodeTextDescriptor(text);
  return common::kNoError;
} catch (const std::bad_alloc&) {
  return common::kOutOfMemory;
}

Status SendEventForResult(platform::AppleEventSender& events, const AppleEvent& event,
                          common::FourCharCode resultType, platform::IdleFunction idle,
                          AEDescriptor* result) {
  AppleEvent reply;
  const platform::SendOptions options{platform::SendMode::waitReply, platform::kNormalPriority,
                                      platform::kNoTimeOut, idle};
  Status status = events.send(event, options, reply);
  if (status != common::kNoError) return status;
  status = ReplyErrorNumber(reply);
  if (status != common::kNoError) return status;
  *result = AEDescriptor();
  // An answer that is no text counts as none.
  if (!reply.isNull()) *result = reply.parameter(keyword::kDirectObject, resultType).descriptor;
  return common::kNoError;
}

Status SendEventCheckReply(platform::AppleEventSender& events, const AppleEvent& event,
                           platform::IdleFunction idle) {
  AppleEvent reply;
  const platform::SendMode mode =
      idle != nullptr ? platform::SendMode::waitReply : platform::SendMode::noReply;
  const platform::SendOptions options{mode, platform::kNormalPriority, platform::kNoTimeOut, idle};
  const Status status = events.send(event, options, reply);
  if (status != common::kNoError || idle == nullptr) return status;
  return ReplyErrorNumber(reply);
}

Status ReplyErrorNumber(const AppleEvent& reply) {
  if (reply.isNull()) return common::kNoError;
  const platform::DescriptorResult number = reply.parameter(keyword::kErrorNumber, type::kInt16);
  if (number.status == common::kAEDescriptorNotFound) return common::kNoError;
  if (number.status != common::kNoError) return number.status;
  return platform::Int16Value(number.descriptor).value_or(common::kAECoercionFailed);
}

Status CopyStringFromDescriptor(const AEDescriptor& descriptor, QString* text) try {
  if (text == nullptr) return common::kBadParameter;
  const platform::DescriptorResult coerced = platform::CoerceDescriptor(descriptor, type::kUnicodeText);
  if (coerced.status != common::kNoError) return coerced.status;
  *text = platform::UnicodeTextValue(coerced.descriptor).value_or(QString());
  return common::kNoError;
} catch (const std::bad_alloc&) {
  return common::kOutOfMemory;
}

void DiscardDescriptor(AEDescriptor* desc) {
  Assert(desc != nullptr, "desc != NULL");
  const Status junk = platform::DisposeDescriptor(desc);
  Assert(junk == common::kNoError, "junk == noErr");
}

}  // namespace quillforth::fileops

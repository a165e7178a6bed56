// SPDX-License-Identifier: MIT
//
// Reads and writes the comment of a file or folder, by asking the Finder with Apple events.
//
// The events are those of appleevents/AppleEvents.h. Main thread: a send waits, without limit, until the
// Finder has answered.
#pragma once

#include <QString>

#include "appleevents/AppleEventManager.h"
#include "appleevents/AppleEvents.h"
#include "common/FileReference.h"
#include "common/Status.h"

namespace quillforth::fileops {

/// Lets other threads run while a send waits, and asks to be called again after 10 ticks. Never gives up.
[[nodiscard]] bool FinderEventIdleProc(platform::IdleRequest& request);
/// `GetFinderComment` and `SetFinderComment` wait with this function: `FinderEventIdleProc` from the start
/// of the program on. Null: they do not wait.
extern platform::IdleFunction finderEventIdleFunction;

/// Null on any error, and when the Finder has no text for it.
[[nodiscard]] QString GetFinderComment(platform::AppleEventSender& events,
                                       const platform::FileReference& item);
/// Without an idle function it does not wait, and 0 means that the event is queued.
common::Status SetFinderComment(platform::AppleEventSender& events, const platform::FileReference& item,
                                const QString& comment);

/// `comment` becomes null when the answer is no text. -50 without `comment` or `idle`.
[[nodiscard]] common::Status CopyFinderComment(platform::AppleEventSender& events,
                                               const platform::FileReference& item, QString* comment,
                                               platform::IdleFunction idle);
[[nodiscard]] common::Status SendFinderComment(platform::AppleEventSender& events,
                                               const platform::FileReference& item, const QString& comment,
                                               platform::IdleFunction idle);

/// -50 for an empty reference, -4960 for an item that does not exist or has no absolute path.
[[nodiscard]] common::Status MakeFinderItemSpecifier(const platform::FileReference& item,
                                                     platform::AEDescriptor* specifier);
/// -50 for a null text.
[[nodiscard]] common::Status MakeUnicodeTextDescriptor(const QString& text,
                                                       platform::AEDescriptor* descriptor);

/// Sends and waits. `result` becomes the reply's direct object as `type`. It becomes the null descriptor when
/// there is no such object, or it cannot be turned into `type`.
[[nodiscard]] common::Status SendEventForResult(platform::AppleEventSender& events,
                                                const platform::AppleEvent& event, common::FourCharCode type,
                                                platform::IdleFunction idle, platform::AEDescriptor* result);
/// Sends, and waits only with an idle function.
[[nodiscard]] common::Status SendEventCheckReply(platform::AppleEventSender& events,
                                                 const platform::AppleEvent& event,
                                                 platform::IdleFunction idle);
/// The reply's 'errn'. 0 when it has none or is the null event, -1700 when 'errn' is no 16-bit number.
[[nodiscard]] common::Status ReplyErrorNumber(const platform::AppleEvent& reply);
/// `text` becomes null when a descriptor without value is turned into text; other types are -1700.
[[nodiscard]] common::Status CopyStringFromDescriptor(const platform::AEDescriptor& descriptor,
                                                      QString* text);

/// Lets go of what a descriptor holds. A null pointer ends the program.
void DiscardDescriptor(platform::AEDescriptor* desc);

}  // namespace quillforth::fileops

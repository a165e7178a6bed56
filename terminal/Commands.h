// SPDX-License-Identifier: MIT
//
// The commands that do one thing and are done: `aggregate`, `classify`, `extensions` and `comment`. Main
// thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "appleevents/AppleEventManager.h"
#include "classify/ExtensionMap.h"
#include "platform/Folder.h"
#include "platform/HTTPReadStream.h"
#include "terminal/CommandLine.h"
#include "terminal/InputFile.h"
#include "terminal/Output.h"
#include "terminal/TerminalPrompt.h"

namespace quillforth::terminal {

/// `aggregate`: sorts a folder's items into subfolders by extension, or tells what it would do.
///
/// Asks on the terminal first, unless told not to. The exit status; 1 also when an item had to stay, and when
/// the user does not confirm.
///
/// A dry run writes a line for each move to `results`: the names before and after it, relative to the folder,
/// parted by a tab and made fit for a terminal.
[[nodiscard]] int RunAggregate(const AggregateArguments& arguments, platform::FolderAccess& folders,
                               const TerminalPrompt& prompt, Output& results, Output& errors);

/// `classify`: "page" or "file", the URL without credentials and the reason, separated by tabs: one line for
/// each URL. As JSON, one object for each. Typed texts are mended; what is no URL stands as it is.
void PrintClassifications(const std::vector<GivenURL>& urls, bool asJson, const classify::CExtensionMap& map,
                          platform::HTTPReadStreamFactory& streams, Output& output);

/// `extensions`: extension and MIME type, separated by a tab: one line for each entry, in the table's order.
void PrintExtensions(const classify::CExtensionMap& map, Output& output);

/// Tells where the files below a folder came from, until `shouldStop` is true.
using FindOrigins =
    std::function<void(const std::string& folder,
                       const std::function<void(const std::string& path, const std::string& origin)>& take,
                       const std::function<bool()>& shouldStop)>;

/// `comment --find`: path and origin, separated by a tab, of each file below the folders whose origin holds
/// the text. The exit status; 1 when there is none, or a folder cannot be read.
[[nodiscard]] int RunFind(const CommentArguments& arguments, const FindOrigins& findOrigins, Output& results,
                          Output& errors);

/// `comment`: prints the comments that there are, or sets them, file by file. The exit status; 1 when a file
/// failed, which stops none of the others. Of several files each line begins with "FILE: ".
///
/// On a terminal a comment is made fit for it; elsewhere its bytes are as they are.
[[nodiscard]] int RunComment(const CommentArguments& arguments, platform::AppleEventSender& events,
                             Output& results, Output& errors);

}  // namespace quillforth::terminal

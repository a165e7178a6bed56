// SPDX-License-Identifier: MIT
//
// The commands that show how URLs are judged: `classify` and `extensions`. Main thread.
#pragma once

#include <QStringList>

#include "classify/ExtensionMap.h"
#include "platform/HTTPReadStream.h"
#include "terminal/Output.h"

namespace quillforth::terminal {

/// "page" or "file", the URL without credentials and the reason, separated by tabs, a line a URL.
void PrintClassifications(const QStringList& urls, const classify::CExtensionMap& map,
                          platform::HTTPReadStreamFactory& streams, Output& output);

/// Extension and MIME type, separated by a tab, a line an entry, in the table's order.
void PrintExtensions(const classify::CExtensionMap& map, Output& output);

}  // namespace quillforth::terminal

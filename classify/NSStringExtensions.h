// SPDX-License-Identifier: MIT
//
// Small operations on the platform string: paths and file references, the text between two markers, and the
// string as a script.
//
// Nothing is ever reported: every failure gives nothing. Pure, except for the look at the file system; any
// thread.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <optional>

#include "common/FileReference.h"
#include "platform/ScriptHost.h"

namespace quillforth::classify {

/// `bytes` up to their first NUL byte, as text. Nothing when these are not UTF-8; a byte-order mark stays.
[[nodiscard]] std::optional<QString> stringWithUTF8String(QByteArrayView bytes);

/// The path of the item that `reference` names. Nothing for a null or empty reference, when the item is gone,
/// and for a path that is not UTF-8. A symbolic link is an item of its own, wherever it leads.
[[nodiscard]] std::optional<QString> stringWithFSRef(const platform::FileReference* reference);
/// Whether `path`, an absolute one, names something that exists; then `reference`, which is not null, refers
/// to it. Otherwise it is left alone.
[[nodiscard]] bool getFSRef(const QString& path, platform::FileReference* reference);

// Markers are found whatever their letter case, by the simple case folding of Unicode. An empty marker is
// never found. Time is linear in the text and the markers together.

/// What stands between the first `start` and the first `end` after it; may be empty.
[[nodiscard]] std::optional<QString> extractBetweenPatternAndPattern(QStringView text, QStringView start,
                                                                     QStringView end);
/// What stands between the first `end` of the text and the last `start` before it; may be empty.
[[nodiscard]] std::optional<QString> reverseExtractBetweenPatternAndPattern(QStringView text,
                                                                            QStringView start,
                                                                            QStringView end);

/// The result of the script `source` as text. Nothing on every failure, and for a result without a text.
///
/// For a list, the item at 0 is taken. Items are counted from 1, so every list gives nothing; that is kept.
/// Blocks while the script runs; any thread.
[[nodiscard]] std::optional<QString> runScript(const QString& source, platform::ScriptHost& host);

}  // namespace quillforth::classify

// SPDX-License-Identifier: MIT
//
// The name a downloaded file should get, from what the server and the URL say.
//
// Both are written by strangers, and the result becomes a name in the user's folder. So the result is always
// one plain, visible path component. Pure, except that `PreferredExtension` is called; safe from any
// thread.
#pragma once

#include <QString>
#include <functional>
#include <string_view>

namespace quillforth::platform {

/// The longest suggested name, in bytes of UTF-8: the 255 of a file system, less "-" and ten digits, which a
/// free name may need.
inline constexpr qsizetype kMaxSuggestedFilenameBytes = 255 - 11;

/// All are bytes as they came; any may be empty.
struct FilenameSources {
  std::string_view contentDisposition;  ///< the field's value
  std::string_view url;                 ///< absolute, of the response that brings the file
  std::string_view MIMEType;            ///< lower case, without parameters
};

/// The extension, without ".", that goes with a MIME type; empty when there is none.
using PreferredExtension = std::function<QString(std::string_view MIMEType)>;

/// The first of these that leaves a usable name: `filename*` of Content-Disposition (RFC 6266; RFC 8187, in
/// UTF-8 or ISO-8859-1), its `filename`, the last component of the URL's path with %-escapes decoded, the
/// URL's host, "download".
///
/// Only what follows the last "/" or "\" counts. Control characters, direction marks and overrides, and line
/// separators are dropped; blanks and dots at the start, and blanks and dots at the end, are trimmed. Bytes
/// are UTF-8, or ISO Latin-1 where they are not valid UTF-8. When a parameter is given twice, the first
/// counts. Encoded words (RFC 2047) and %-escapes in a plain `filename` are taken as they stand.
///
/// A name without an extension gets that of the MIME type, unless the type is "application/octet-stream".
/// `preferredExtension` is asked only then. At most kMaxSuggestedFilenameBytes, cut at a character before the
/// extension. Never empty.
[[nodiscard]] QString SuggestedFilename(const FilenameSources& sources,
                                        const PreferredExtension& preferredExtension);

/// `name` cut to `maxBytes` of UTF-8 after `insert` was put before its extension: "a.b" and "-1" give
/// "a-1.b". Only the part before the extension is cut, at a character; an extension of more than 32 bytes
/// counts as none.
[[nodiscard]] QByteArray FilenameWithInsert(const QByteArray& name, const QByteArray& insert,
                                            qsizetype maxBytes);

}  // namespace quillforth::platform

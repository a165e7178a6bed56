// SPDX-License-Identifier: MIT
//
// What counts as a URL, everywhere in the program; and files as paths and as "file" URLs.
//
// A text makes a URL when all its characters may stand in one (RFC 2396, section 2), with brackets around the
// address of a host (RFC 3986, section 3.2.2) and nowhere else. Nothing more is asked, so a relative
// text such as "site-a.test" makes a URL, and fails later, where it is used. Pure values; any thread.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "common/FileReference.h"

namespace quillforth::platform {

/// A text of RFC 2396 characters and, perhaps, an address in brackets, kept exactly as it came.
///
/// Grammar of the parts (RFC 2396, appendix B): [scheme ":"] ["//" authority] path ["?" query] ["#"
/// fragment].
class URL {
 public:
  /// Nothing for an empty text, or one that holds a blank, a control, non-ASCII or excluded character, a "%"
  /// without two hexadecimal digits after it, or a second "#". Nor for brackets that are not around the whole
  /// host, or hold no address: IPv6, also with a zone ("fe80::1%25eth0", RFC 6874), or IPvFuture.
  [[nodiscard]] static std::optional<URL> URLWithString(const QString& text);

  /// The whole text, user name and password included.
  [[nodiscard]] const QString& absoluteString() const { return text_; }
  /// The same without "user:password@": the form that is shown, logged or stored.
  [[nodiscard]] QString stringWithoutCredentials() const;
  /// In lower case; empty when there is none.
  [[nodiscard]] QString scheme() const;
  /// Without user, port and the brackets of an address; empty when there is no authority. %-escapes stay.
  [[nodiscard]] QString host() const;
  /// The path as written, %-escapes included; may be empty.
  [[nodiscard]] QString path() const;
  /// The text after the last "." of the path's last component, %-escapes decoded; empty when there is none:
  /// for a path that ends in "/", a name whose only "." is its first character, a trailing ".".
  [[nodiscard]] QString pathExtension() const;

 private:
  explicit URL(QString text) : text_(std::move(text)) {}

  QString text_;
};

/// Whether `text` begins like a URL that the program can download: with "http://", "https://" or "ftp://", in
/// any letter case.
[[nodiscard]] bool HasWebScheme(QStringView text);
/// Whether `url` is absolute and http, https or ftp, so that the program can download from there.
[[nodiscard]] bool CanBeFetched(const URL& url);

/// The host of `text` as `URL::host` has it, in lower case, whether or not the text makes a URL.
[[nodiscard]] QString HostOf(const QString& text);

/// The URL that a person means by typing `text`. A URL that can be fetched stays as it is. In other texts,
/// characters that may not stand in a URL are escaped, in UTF-8. Where there is no scheme, "http://" is put
/// in front, or "http:" where the text begins with "//". A host beyond ASCII gets its form for name servers
/// (RFC 3492). Nothing when the text has another scheme, or still no host.
[[nodiscard]] std::optional<URL> URLOfTypedText(const QString& text);

/// `text` without "user:password@", whether or not it makes a URL.
///
/// Forms that only a lenient reader takes for an authority lose it too, such as "http:/user:password@host"
/// and "user:password@host". A password may hold "/", "?" or "#". It is recognised when the text between ":"
/// and the first of these cannot be a port. A mangled text is better than a password on the screen. Only
/// "mailto:user@host" stays as it is.
[[nodiscard]] QString WithoutCredentials(const QString& text);
/// The same for URLs that stand anywhere in `text`, and in one another: each "//" counts as the beginning of
/// an authority.
[[nodiscard]] QString WithoutCredentialsInside(const QString& text);
/// As `WithoutCredentials`, with the user name kept, as "user@".
[[nodiscard]] QString WithoutPassword(const QString& text);
/// Overwrites user name and password with "*", up to the "@". For an argument of the process, which other
/// programs can read as long as it runs.
void OverwriteCredentials(char* text);

// Files as paths and as "file" URLs (RFC 8089), whatever bytes their names are made of.

/// The longest path that the system takes, in bytes.
inline constexpr std::size_t kMaxPathLength = 4095;

/// The file at an absolute path; it need not exist. Nothing for a relative path, or one that holds a NUL
/// character or a surrogate without its partner. "/" at the end is dropped.
[[nodiscard]] std::optional<FileReference> FileAtPath(const QString& path);
/// "file:///…", with every character of the path as a %-escape unless it is unreserved or "/".
[[nodiscard]] QByteArray FileURL(const FileReference& file);
/// The file that `url` names; it need not exist. Nothing for another scheme, another host, or a path that is
/// relative, too long or holds a NUL byte. A query and a fragment are dropped.
[[nodiscard]] std::optional<FileReference> FileAtURL(QByteArrayView url);

}  // namespace quillforth::platform

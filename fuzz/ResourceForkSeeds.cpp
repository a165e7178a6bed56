// SPDX-License-Identifier: MIT
//
// resource_fork_seeds FOLDER: writes a few well-formed files for resource_fork_fuzzer into an existing
// folder.

#include <plist/plist.h>

#include <QDir>
#include <QFile>
#include <memory>

#include "tests/support/ForkBytes.h"

namespace {

using PropertyList = std::unique_ptr<void, decltype(&plist_free)>;

QByteArray PropertyListBytes(decltype(&plist_to_xml) write, decltype(&plist_to_xml_free) free) {
  const PropertyList list(plist_new_dict(), &plist_free);
  plist_dict_set_item(list.get(), "URL", plist_new_string("http://site-a.test/?a=b&c"));
  char* bytes = nullptr;
  std::uint32_t length = 0;
  write(list.get(), &bytes, &length);
  const QByteArray copy(bytes, static_cast<qsizetype>(length));
  free(bytes);
  return copy;
}

QByteArray WideBytes(QStringView text) {
  return {reinterpret_cast<const char*>(text.utf16()), text.size() * 2};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const QByteArray fork = quillforth::tests::ForkBytes("url ", {"http://site-a.test/", ""});
  const QByteArray seeds[] = {
      fork,
      quillforth::tests::AppleDoubleBytes(fork),
      PropertyListBytes(&plist_to_xml, &plist_to_xml_free),
      PropertyListBytes(&plist_to_bin, &plist_to_bin_free),
      "[InternetShortcut]\r\nURL=http://site-a.test/\r\n",
      "[Desktop Entry]\nType=Link\nURL=http://site-a.test/\\s\n",
      "[InternetShortcut]\rURL=http://site-a.test/\r",
      "[Desktop Entry]\nType[$i]=Link\nURL[$e]=http://site-a.test/$$\n",
      WideBytes(u"\uFEFF[InternetShortcut]\r\nURL=http://site-a.test/\r\n"),
      WideBytes(u"<plist><dict><key>URL</key><string>http://site-a.test/</string></dict></plist>"),
      "file://localhost/a%20b?c#d",
  };
  for (std::size_t i = 0; i < std::size(seeds); ++i) {
    QFile file(QDir(QFile::decodeName(argv[1])).filePath(QString::number(i)));
    if (!file.open(QFile::WriteOnly) || file.write(seeds[i]) != seeds[i].size()) return 1;
  }
  return 0;
}

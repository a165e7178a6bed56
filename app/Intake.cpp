// SPDX-License-Identifier: MIT
//
// How URLs come in, and how a page gives its links to the queue.

#include <QStringDecoder>

#include "app/MyAppController.h"
#include "classify/PageOrFile.h"
#include "linkextract/PageLinks.h"
#include "linkextract/PageText.h"

namespace quillforth::app {

namespace {

// `text` is UTF-8; unlike QString::fromUtf8, this keeps a byte-order mark.
QString StringFromUTF8(std::string_view text) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
  return decoder(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
}

// A value that was cut inside a character makes no string.
std::vector<QString> LinksOfPage(const QByteArray& page, const QString& pageURL,
                                 const classify::CExtensionMap& extensions) {
  const linkextract::LinkTable links = linkextract::ExtractPageLinks(
      {page.constData(), static_cast<std::size_t>(page.size())}, pageURL.toStdString(), extensions);
  std::vector<QString> urls;
  for (const linkextract::LinkEntry& link : links) {
    if (linkextract::IsValidUTF8(link.value())) urls.push_back(StringFromUTF8(link.value()));
  }
  return urls;
}

}  // namespace

QString DraggedString(const Pasteboard& pasteboard) {
  const QString string = pasteboard.stringForType(kStringPasteboardType);
  return string.isNull() ? pasteboard.stringForType(kURLPasteboardType) : string;
}

void MyAppController::importURL(Window& sender) {
  QString url = outlets_.urlTextField.stringValue();
  if (!url.isEmpty()) {
    urlList_.clear();
    queueDidChange();
    if (!url.startsWith(QStringLiteral("http://")) && !url.startsWith(QStringLiteral("https://"))) {
      url.prepend(QStringLiteral("http://"));
      outlets_.urlTextField.setStringValue(url);
    }
    extractLinks(url);
  }
  sender.orderOut();
}

DragOperation MyAppController::tableViewValidateDrop(const Pasteboard& pasteboard) const {
  const bool makesURL = platform::URL::URLWithString(DraggedString(pasteboard)).has_value();
  return makesURL ? DragOperation::every : DragOperation::none;
}

bool MyAppController::tableViewAcceptDrop(const Pasteboard& pasteboard) {
  const QString url = DraggedString(pasteboard);
  if (url.isEmpty()) return false;
  takeURL(url, true);
  return true;
}

void MyAppController::takeURL(const QString& url, bool promptForDestination) {
  showStatusAndActivate();
  if (isWebPageURL(url)) {
    extractLinks(url);
  } else {
    startURL(url, promptForDestination);
  }
}

void MyAppController::extractLinks(const QString& pageURL) {
  queueLinksOfPage(pageURL);
  takeNextURL(true);  // also when the page gave nothing, for those that waited before
}

void MyAppController::queueLinksOfPage(const QString& pageURL) {
  const std::optional<platform::URL> url = platform::URL::URLWithString(pageURL);
  if (!url) return;
  const std::optional<QByteArray> page = host_.pageLoader->resourceData(*url);
  if (!page) return;
  std::vector<QString> urls;
  if (!host_.calculate([&] { urls = LinksOfPage(*page, pageURL, extensionMap_); })) return;
  for (const QString& link : urls) urlList_.append(link);
}

bool MyAppController::isWebPageURL(const QString& url) {
  return classify::isWebPageURL(url, extensionMap_, *host_.readStreams);
}

}  // namespace quillforth::app

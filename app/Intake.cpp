// SPDX-License-Identifier: MIT
//
// How URLs come in, and how a page gives its links to the queue.

#include <utility>

#include "app/MyAppController.h"
#include "classify/PageOrFile.h"
#include "linkextract/PageLinks.h"
#include "linkextract/PageText.h"

namespace quillforth::app {

namespace {

// A value that was cut inside a character makes no string.
UrlQueue LinksOfPage(const platform::PageLoad& page, const QString& pageURL,
                     const classify::CExtensionMap& extensions) {
  const linkextract::LinkTable links =
      linkextract::ExtractPageLinks({page.data->constData(), static_cast<std::size_t>(page.data->size())},
                                    pageURL.toStdString(), extensions);
  UrlQueue urls;
  for (const linkextract::LinkEntry& link : links) {
    if (linkextract::IsValidUTF8(link.value().view())) urls.append(link, page.url);
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
    discard(urlList_.takeAll());
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
  const auto fail = [&](const QString& reason) {
    tell(&ControllerObserver::pageDidNotLoad, pageURL, reason);
  };
  const std::optional<platform::URL> url = platform::URL::URLWithString(pageURL);
  if (!url) return fail(InvalidURLReason());
  const platform::PageLoad page = host_.pageLoader->resourceData(*url);
  if (!page.data) return fail(page.failure);
  UrlQueue urls;
  if (!host_.calculate([&] { urls = LinksOfPage(page, pageURL, extensionMap_); })) return fail({});
  const std::size_t linkCount = urls.size();
  urlList_.append(std::move(urls));
  tell(&ControllerObserver::pageWasQueued, pageURL, linkCount);
}

bool MyAppController::isWebPageURL(const QString& url) {
  return classify::isWebPageURL(url, extensionMap_, *host_.readStreams);
}

}  // namespace quillforth::app

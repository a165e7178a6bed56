// SPDX-License-Identifier: MIT
//
// How URLs come in, and how a page gives its links to the queue.

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "app/MyAppController.h"
#include "classify/NSStringExtensions.h"
#include "classify/PageOrFile.h"
#include "linkextract/PageLinks.h"
#include "linkextract/PageText.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

namespace {

// A value that was cut inside a character makes no string.
UrlQueue LinksOfPage(const platform::PageLoad& page, const QString& pageURL,
                     const classify::CExtensionMap& extensions, const LinkChoice& wantsLink) {
  const linkextract::LinkTable links =
      linkextract::ExtractPageLinks({page.data->constData(), static_cast<std::size_t>(page.data->size())},
                                    pageURL.toStdString(), extensions);
  UrlQueue urls;
  for (const linkextract::LinkEntry& link : links) {
    const common::BoundedText url = link.value();
    if (!linkextract::IsValidUTF8(url.view())) continue;
    if (wantsLink && !wantsLink({QString::fromUtf8(url.view()), page.url, pageURL})) continue;
    urls.append(link, page.url);
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
  if (!host_.calculate([&] { urls = LinksOfPage(page, pageURL, extensionMap_, host_.wantsLink); }))
    return fail({});
  if (host_.chooseLinks && !urls.empty()) host_.chooseLinks(urls);
  const std::size_t linkCount = urls.size();
  urlList_.append(std::move(urls));
  tell(&ControllerObserver::pageWasQueued, pageURL, linkCount);
}

bool MyAppController::isWebPageURL(const QString& url) {
  return classify::isWebPageURL(url, extensionMap_, *host_.readStreams);
}

namespace {

using common::FourCC;

struct Browser {
  common::FourCharCode creator;
  const char* script;
};

// The order counts: when two of them run, the upper one is asked.
constexpr std::array kBrowsers{
    Browser{FourCC("sfri"),
            "tell application \"Safari\"\r"
            "\tURL of first document\r"
            "end tell"},
    Browser{FourCC("MOZB"),
            "tell application \"Firefox\" to activate\r"
            "tell application \"System Events\"\r"
            "\tkeystroke \"l\" using {command down}\r"
            "\tkeystroke \"c\" using {command down}\r"
            "end tell\r"
            "delay 0.5\r"
            "activate\r"
            "the clipboard"},
    Browser{FourCC("OWEB"),
            "tell application \"OmniWeb\"\r"
            "\tset theWindow to (front window)\r"
            "\tdo script \"location.href\" window theWindow\r"
            "end tell"},
    Browser{FourCC("MSIE"),
            "tell application \"Internet Explorer\"\r"
            "\tdo script \"location.href\"\r"
            "end tell"},
    Browser{FourCC("MOZC"),
            "tell application \"Camino\"\r"
            "\tURL of current tab of front browser window\r"
            "end tell"},
    Browser{FourCC("OPRA"),
            "tell application \"Opera\"\r"
            "\tget URL of front window\r"
            "end tell"},
    Browser{FourCC("FLKb"),
            "tell application \"Flock\"\r"
            "\tset p to properties of front window as list\r"
            "\treturn item 3 of p\r"
            "end tell"},
    Browser{FourCC("rimZ"),
            "tell application \"Google Chrome\"\r"
            "\tget URL of active tab of first window\r"
            "end tell"},
};

// The script for the first browser of the table that runs; which one is in front does not count. Nothing when
// none runs.
std::optional<QString> runningBrowserScript(platform::RunningProcesses& processes) {
  const std::vector<platform::RunningProcess> running = processes.runningProcesses();
  const auto* found = std::find_if(kBrowsers.begin(), kBrowsers.end(), [&running](const Browser& browser) {
    return std::any_of(running.begin(), running.end(), [&browser](const platform::RunningProcess& process) {
      return process.fileType == platform::kApplicationFileType && process.creator == browser.creator;
    });
  });
  return found == kBrowsers.end() ? std::nullopt : std::optional(QString::fromLatin1(found->script));
}

}  // namespace

void MyAppController::processCurrentBrowserURL() {
  const std::optional<QString> script =
      host_.processes != nullptr ? runningBrowserScript(*host_.processes) : std::nullopt;
  const std::optional<QString> url =
      script && host_.scripts != nullptr ? classify::runScript(*script, *host_.scripts) : std::nullopt;
  if (!url) {
    host_.application->activateIgnoringOtherApps();
    doAlertAdding(
        host_.localizedText(LOCALIZED("Could not retrieve browser URL.")),
        host_.localizedText(LOCALIZED(
            "Either your browser is not running, doesn't have an open window, or it isn't supported "
            "by this feature.")));
    return;
  }
  takeURL(*url, true);
}

}  // namespace quillforth::app

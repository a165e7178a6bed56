// SPDX-License-Identifier: MIT
//
// The one controller: the URL queue, the download in flight, and what the interface shows of both.
//
// It is the delegate of every download and the data source of the queue table. It knows no widget and no
// terminal: it sees its outlets (Outlets.h) and its host (Host.h). Its methods are in several source files,
// one for each concern. Main thread only; nothing is saved when it goes.
#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

#include "app/DestinationFolder.h"
#include "app/Host.h"
#include "app/Outlets.h"
#include "app/Pasteboard.h"
#include "app/Preferences.h"
#include "app/UrlQueue.h"
#include "classify/ExtensionMap.h"
#include "platform/Sound.h"

namespace quillforth::platform {
class AppleEvent;
}  // namespace quillforth::platform

namespace quillforth::app {

class MyAppController final : public platform::WebDownloadDelegate,
                              public TableViewDataSource,
                              public ServicesProvider {
 public:
  MyAppController(const Outlets& outlets, const Host& host);
  ~MyAppController() override;
  MyAppController(const MyAppController&) = delete;
  MyAppController& operator=(const MyAppController&) = delete;

  // Start-up and general actions (MyAppController.cpp).
  void awakeFromNib();
  void applicationWillFinishLaunching();
  void applicationWillBecomeActive() { setOutputFolderButtonToolTip(); }
  void windowDidBecomeKey() { setDownloadDestinationTextFieldValue(); }
  void showStatusAndActivate();
  void showPreferencesWindow();
  /// Beeps, shows the texts, in the user's language, with one button "OK", and waits for it.
  /// `informativeText` is a format: a literal percent sign in it is doubled.
  void doAlertAdding(const QString& messageText, const QString& informativeText);
  [[nodiscard]] Window& statusWindow() { return outlets_.statusWindow; }
  /// Null when the sound could not be loaded. The controller never plays it.
  [[nodiscard]] const platform::Sound* completionSound() const { return harpSound_.get(); }
  /// Empty until `applicationWillFinishLaunching`.
  [[nodiscard]] const classify::CExtensionMap& extensionMap() const { return extensionMap_; }

  // Queue and table (Queue.cpp).
  /// Of these, `page` is the URL of the page that `url` was found on; null: none.
  void queueURL(const QString& url, const QString& page = {});
  void queueURLs(const UrlQueue& urls);
  void updateCountTextField();
  [[nodiscard]] std::size_t numberOfRows() const override;
  [[nodiscard]] QString objectValueForRow(std::size_t row) const override;
  [[nodiscard]] std::uint64_t identifierOfRow(std::size_t row) const override;
  void tableViewSelectionDidChange();
  void deleteButtonClicked();
  void clearQueue();
  void stop();
  void tryAgain();
  /// Starts the head of the queue, if there is one.
  void takeNextURL(bool promptForDestination);
  /// Starts one URL, or queues it while a download runs. Without a connection the URL is lost.
  void startURL(const QString& url, bool promptForDestination, const QString& page = {});

  // Download driver (DownloadDriver.cpp).
  void downloadFile(const QString& url, const QString& page = {});
  void cancelDownloadFile();
  [[nodiscard]] bool isDownloading() const { return isDownloading_; }
  /// Whether a download has been started that has neither ended nor been cancelled. This counts also what
  /// `isDownloading` does not count yet, or does not count any more.
  [[nodiscard]] bool isBusy() const { return !inFlight_.empty(); }
  /// Whether one of these downloads has not begun.
  [[nodiscard]] bool isBeginning() const;
  /// Their URLs as they were given, credentials included.
  [[nodiscard]] QStringList textsInFlight() const;
  /// How many have been started so far.
  [[nodiscard]] int startedCount() const { return startedCount_; }
  void setDownloading(bool downloading);
  [[nodiscard]] bool checkInternetConnection();
  void downloadDidBegin(platform::WebDownload& download) override;
  void downloadDidReceiveResponse(platform::WebDownload& download,
                                  const platform::URLResponse& response) override;
  void downloadDecideDestinationWithSuggestedFilename(platform::WebDownload& download,
                                                      const QString& filename) override;
  platform::AuthenticationSheetParent* downloadWindowForAuthenticationSheet(
      platform::WebDownload& download) override;
  bool downloadShouldDecodeSourceDataOfMIMEType(platform::WebDownload& download,
                                                const QString& mimeType) override;
  void downloadDidCreateDestination(platform::WebDownload& download, const QString& path) override;
  void downloadDidReceiveDataOfLength(platform::WebDownload& download, std::uint64_t length) override;
  void downloadDidFinish(platform::WebDownload& download) override;
  void downloadDidFailWithError(platform::WebDownload& download,
                                const platform::DownloadError& error) override;

  // URL intake (Intake.cpp).
  /// Replaces the queue with the links of the page whose URL is in the import field, and orders `sender` out.
  /// With an empty field it only orders `sender` out.
  void importURL(Window& sender);
  /// Whether the dragged string makes a URL.
  [[nodiscard]] DragOperation tableViewValidateDrop(const Pasteboard& pasteboard) const;
  /// Takes the string as a page or a file; false when there is none.
  bool tableViewAcceptDrop(const Pasteboard& pasteboard);
  /// Loads the page, queues its links, and starts the queue's head. Silent on every failure.
  void extractLinks(const QString& pageURL);
  /// Whether it is a page rather than a file. May ask the server, and waits through up to ten seconds of
  /// silence.
  [[nodiscard]] bool isWebPageURL(const QString& url);
  /// Takes the page that a running browser shows, or says that there is none. Blocks, for seconds at most.
  void processCurrentBrowserURL();

  // URLs from other programs (AppleEventIntake.cpp).
  /// Installs the handlers of the two events; they are removed when the controller goes.
  void registerMyApp();
  /// Takes the URL in the 'url ' resource of each file of a list, as a page or a file. Ignores `reply`.
  void openWithReplyEvent(const platform::AppleEvent& event, platform::AppleEvent& reply);
  /// `handleGetURL` with the text of the direct object. Ignores `reply`.
  void getUrlWithReplyEvent(const platform::AppleEvent& event, platform::AppleEvent& reply);
  /// Takes the host of the URL as a page or a file. Only the host is passed on; this is intended.
  void handleGetURL(const QString& urlString);
  void downloadURLUserDataError(const Pasteboard& pasteboard, const QString& userData,
                                QString* error) override;

  // Destination folder (DestinationFolder.cpp).
  void selectDestinationDirectory();
  void openDestinationDirectory();
  void setDownloadDestinationTextFieldValue();
  void setOutputFolderButtonToolTip();
  [[nodiscard]] DestinationFolder& destinationFolder() { return destination_; }

  // Sorting the destination folder (Aggregation.cpp).
  /// Asks first, in a sheet on the status window.
  void aggregateFile();
  /// Sorts when the sheet's first button was pressed.
  void alertDidEndReturnCodeContextInfo(int returnCode);

 private:
  struct InFlight {
    std::shared_ptr<platform::WebDownload> download;
    DownloadProgress progress;
    bool hasBegun = false;
  };

  template <typename... Parameters, typename... Arguments>
  void tell(void (ControllerObserver::*what)(Parameters...), const Arguments&... arguments) {
    for (ControllerObserver* observer : host_.observers) (observer->*what)(arguments...);
  }
  [[nodiscard]] InFlight& inFlight(const platform::WebDownload& download);
  InFlight takeInFlight(const platform::WebDownload& download);
  void takeFinished(platform::WebDownload& download);
  void takeFailed(const platform::DownloadError& error);
  void hideProgressArea();
  void queueDidChange();
  void showQueue();
  /// Tells of what the user has thrown away.
  void discard(UrlQueue urls);
  /// Tells the download service what is to be started next.
  void expectNextURLs();
  [[nodiscard]] platform::WebDownloadRequest requestFor(const platform::URL& url, const QString& page) const;
  /// Activates, and takes the URL as a page or a file.
  void takeURL(const QString& url, bool promptForDestination);
  void removeEventHandlers();
  /// Appends the page's links, and shows nothing of it yet. Silent on every failure.
  void queueLinksOfPage(const QString& pageURL);
  /// Sorts the destination folder, deciding it first if it never was; nothing without a folder.
  void aggregateDestination();

  Outlets outlets_;
  Host host_;
  Preferences preferences_;
  DestinationFolder destination_;
  std::unique_ptr<platform::Sound> harpSound_;
  bool isDownloading_ = false;
  std::shared_ptr<platform::WebDownload> fileWebDownload_;
  std::vector<InFlight> inFlight_;  // those that may still call back
  int startedCount_ = 0;
  bool isExpecting_ = false;                // the download service was told what comes next
  std::int32_t receivedContentLength_ = 0;  // wraps
  std::int32_t expectedContentLength_ = 0;  // 0 or negative: unknown
  std::uint32_t startTime_ = 0;
  std::uint32_t currentTime_ = 0;
  QString fileDownloadFilePath_;
  UrlQueue urlList_;
  classify::CExtensionMap extensionMap_;
};

}  // namespace quillforth::app

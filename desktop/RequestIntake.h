// SPDX-License-Identifier: MIT
//
// Leads what other programs ask for to the controller: as Apple events, as drops, as requests of the Services
// menu.
//
// Each piece of work goes through the gate, so that it waits while the controller does, and comes in the
// order of the requests. Only coming forward does not wait. Main thread.
#pragma once

#include <deque>

#include "appleevents/AppleEventManager.h"
#include "common/Status.h"
#include "desktop/Desktop.h"
#include "desktop/Request.h"
#include "desktop/SelectionReader.h"

namespace quillforth::desktop {

class RequestIntake final : public RequestHandler {
 public:
  /// `events` takes Apple events to the program itself when they are addressed to `signature`. All outlive
  /// this.
  RequestIntake(Desktop& desktop, platform::AppleEventSender& events, common::FourCharCode signature)
      : desktop_(desktop), events_(events), signature_(signature) {}

  /// The first request starts the desktop and shows the window.
  [[nodiscard]] Answer take(const Request& request) override;
  [[nodiscard]] bool hasBegun() const { return hasBegun_; }
  /// Sends an open-documents event for each file, in its turn.
  void openDocuments(const QStringList& fileURIs);

 private:
  void remember(const QString& identity);
  void begin();
  void activate();
  void open(const QStringList& uris);
  void openDocument(const QByteArray& fileURL);
  void getURL(const QString& url);
  void downloadText(const QString& text);
  /// `size`: of the text that it holds.
  void send(platform::AppleEvent event, qsizetype size);
  void add(qsizetype size, PacedIntake::Item item);
  [[nodiscard]] platform::AppleEvent makeEvent(common::FourCharCode eventClass, common::FourCharCode eventID,
                                               platform::AEDescriptor directObject) const;

  Desktop& desktop_;
  platform::AppleEventSender& events_;
  common::FourCharCode signature_;
  SelectionReader selection_;
  std::deque<QString> taken_;  // identities of the latest requests
  bool hasBegun_ = false;
  bool hasStarted_ = false;
};

}  // namespace quillforth::desktop

// SPDX-License-Identifier: MIT

#include "desktop/RequestIntake.h"

#include <QFile>
#include <utility>

#include "app/Services.h"
#include "desktop/Activation.h"
#include "desktop/MimePasteboard.h"
#include "platform/FileURL.h"

namespace quillforth::desktop {

namespace {

using platform::AEDescriptor;
using platform::AppleEvent;
namespace descriptor_type = platform::descriptor_type;

constexpr common::FourCharCode kCoreEventClass = common::FourCC("aevt");
constexpr common::FourCharCode kOpenDocuments = common::FourCC("odoc");
constexpr common::FourCharCode kGetURL = common::FourCC("GURL");  // class and ID
// Commands besides one for each text: the start, the files' event, coming forward.
constexpr std::size_t kMoreCommands = 3;

}  // namespace

RequestHandler::Answer RequestIntake::take(const Request& request) {
  if (desktop_.isQuitting()) return Answer::isQuitting;
  if (desktop_.gate().room() < static_cast<std::size_t>(request.texts.size()) + kMoreCommands) {
    return Answer::tooBusy;
  }
  if (!request.activationToken.isEmpty()) RememberActivation(request.activationToken);
  begin();
  switch (request.kind) {
    case Request::Kind::activate:
      activate();
      break;
    case Request::Kind::open:
      open(request.texts);
      break;
    case Request::Kind::getURL:
      getURL(request.texts.constFirst());
      break;
    case Request::Kind::downloadText:
      downloadText(request.texts.constFirst());
      break;
    case Request::Kind::downloadSelection:
      selection_.read(SelectionSource::selectionOrClipboard,
                      [this](const QString& text) { downloadText(text); });
      break;
  }
  return Answer::taken;
}

void RequestIntake::begin() {
  if (std::exchange(hasBegun_, true)) return;
  desktop_.gate().post([this] {
    desktop_.start();
    hasStarted_ = true;
  });
}

void RequestIntake::activate() {
  if (hasStarted_) return desktop_.bringForward();
  desktop_.gate().post([this] { desktop_.bringForward(); });
}

void RequestIntake::open(const QStringList& uris) {
  QList<QByteArray> files;
  for (const QString& uri : uris) {
    if (IsFileURI(uri)) files.append(uri.toUtf8());
  }
  if (!files.isEmpty()) sendOpenDocuments(files);
  for (const QString& uri : uris) {
    if (!IsFileURI(uri)) desktop_.takeURL(uri);
  }
}

void RequestIntake::openDocuments(const QStringList& paths) {
  QList<QByteArray> files;
  for (const QString& path : paths) {
    files.append(platform::FileURL(platform::FileReference(QFile::encodeName(path).toStdString())));
  }
  sendOpenDocuments(files);
}

void RequestIntake::sendOpenDocuments(const QList<QByteArray>& fileURLs) {
  AEDescriptor files(descriptor_type::kList, {});
  for (const QByteArray& url : fileURLs) files.append(AEDescriptor(descriptor_type::kFileURL, url));
  send(makeEvent(kCoreEventClass, kOpenDocuments, std::move(files)));
}

void RequestIntake::getURL(const QString& url) {
  send(makeEvent(kGetURL, kGetURL, platform::UnicodeTextDescriptor(url)));
}

// Blanks around a selected text are nobody's intention.
void RequestIntake::downloadText(const QString& text) {
  desktop_.gate().post([this, pasteboard = MimePasteboard(text.trimmed())] {
    if (app::ServicesProvider* provider = desktop_.servicesProvider()) {
      provider->downloadURLUserDataError(pasteboard, QString(), nullptr);
    }
  });
}

AppleEvent RequestIntake::makeEvent(common::FourCharCode eventClass, common::FourCharCode eventID,
                                    AEDescriptor directObject) const {
  AppleEvent event(eventClass, eventID,
                   platform::CodeDescriptor(descriptor_type::kApplicationSignature, signature_));
  event.setParameter(platform::event_keyword::kDirectObject, std::move(directObject));
  return event;
}

// Within the command, so that the next one waits until the handler is done. Handlers report nothing.
void RequestIntake::send(AppleEvent event) {
  desktop_.gate().post([this, event = std::move(event)] {
    AppleEvent reply;
    static_cast<void>(events_.send(event, {}, reply));
  });
}

}  // namespace quillforth::desktop

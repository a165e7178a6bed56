// SPDX-License-Identifier: MIT

#include "desktop/RequestIntake.h"

#include <QFile>
#include <numeric>
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
// Commands for a request besides its items, one of which is posted at a time: the start, coming forward.
constexpr std::size_t kMaxCommands = 3;

std::size_t LengthOf(const QStringList& texts) {
  return std::accumulate(
      texts.begin(), texts.end(), std::size_t{0},
      [](std::size_t sum, const QString& text) { return sum + static_cast<std::size_t>(text.size()); });
}

}  // namespace

RequestHandler::Answer RequestIntake::take(const Request& request) {
  if (desktop_.isQuitting()) return Answer::isQuitting;
  const auto count = static_cast<std::size_t>(request.texts.size());
  if (desktop_.gate().room() < kMaxCommands ||
      !desktop_.pacedIntake().hasRoom(count, LengthOf(request.texts))) {
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
  for (const QString& uri : uris) {
    if (IsFileURI(uri)) {
      openDocument(uri.toUtf8());
    } else {
      add(uri.size(), [this, pasteboard = MimePasteboard(uri)] {
        desktop_.controller().tableViewAcceptDrop(pasteboard);
      });
    }
  }
}

void RequestIntake::openDocuments(const QStringList& paths) {
  for (const QString& path : paths) {
    openDocument(platform::FileURL(platform::FileReference(QFile::encodeName(path).toStdString())));
  }
}

void RequestIntake::openDocument(const QByteArray& fileURL) {
  AEDescriptor files(descriptor_type::kList, {});
  files.append(AEDescriptor(descriptor_type::kFileURL, fileURL));
  send(makeEvent(kCoreEventClass, kOpenDocuments, std::move(files)), fileURL.size());
}

void RequestIntake::getURL(const QString& url) {
  send(makeEvent(kGetURL, kGetURL, platform::UnicodeTextDescriptor(url)), url.size());
}

// Blanks around a selected text are nobody's intention.
void RequestIntake::downloadText(const QString& text) {
  add(text.size(), [this, pasteboard = MimePasteboard(text.trimmed())] {
    if (app::ServicesProvider* provider = desktop_.servicesProvider()) {
      provider->downloadURLUserDataError(pasteboard, QString(), nullptr);
    }
  });
}

void RequestIntake::add(qsizetype size, PacedIntake::Item item) {
  static_cast<void>(desktop_.pacedIntake().add(std::move(item), static_cast<std::size_t>(size)));
}

AppleEvent RequestIntake::makeEvent(common::FourCharCode eventClass, common::FourCharCode eventID,
                                    AEDescriptor directObject) const {
  AppleEvent event(eventClass, eventID,
                   platform::CodeDescriptor(descriptor_type::kApplicationSignature, signature_));
  event.setParameter(platform::event_keyword::kDirectObject, std::move(directObject));
  return event;
}

// Within the command, so that the next one waits until the handler is done. Handlers report nothing.
void RequestIntake::send(AppleEvent event, qsizetype size) {
  add(size, [this, event = std::move(event)] {
    AppleEvent reply;
    static_cast<void>(events_.send(event, {}, reply));
  });
}

}  // namespace quillforth::desktop

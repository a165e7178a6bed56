// SPDX-License-Identifier: MIT

#include "desktop/RequestIntake.h"

#include <algorithm>
#include <utility>

#include "app/Pasteboard.h"
#include "desktop/Activation.h"
#include "desktop/MimePasteboard.h"

namespace quillforth::desktop {

namespace {

using platform::AEDescriptor;
using platform::AppleEvent;
namespace descriptor_type = platform::descriptor_type;

constexpr common::FourCharCode kCoreEventClass = common::FourCC("aevt");
constexpr common::FourCharCode kOpenDocuments = common::FourCC("odoc");
constexpr common::FourCharCode kGetURL = common::FourCC("GURL");  // class and ID
// Commands for a request: the start, coming forward, what cannot be taken, and one of its items at a time.
constexpr std::size_t kMaxCommands = 4;

}  // namespace

RequestHandler::Answer RequestIntake::take(const Request& request) {
  if (desktop_.isQuitting()) return Answer::isQuitting;
  const QString& identity = request.handOver.identity;
  if (std::find(taken_.begin(), taken_.end(), identity) != taken_.end()) return Answer::taken;
  if (IsLate(request.handOver)) return Answer::isLate;
  const bool hasRoom = static_cast<std::size_t>(SizeOf(request.texts)) <= desktop_.pacedIntake().room();
  if (desktop_.gate().room() < kMaxCommands || !hasRoom) return Answer::tooBusy;
  if (!identity.isEmpty()) remember(identity);
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

void RequestIntake::remember(const QString& identity) {
  constexpr std::size_t kMaxTaken = 64;
  taken_.push_back(identity);
  if (taken_.size() > kMaxTaken) taken_.pop_front();
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
  QStringList unusable;
  for (const QString& uri : uris) {
    if (!IsUsableURI(uri)) {
      unusable.append(uri);
    } else if (IsFileURI(uri)) {
      openDocument(uri.toUtf8());
    } else {
      add(uri.size(), [this, pasteboard = MimePasteboard(uri)] {
        desktop_.controller().tableViewAcceptDrop(pasteboard);
      });
    }
  }
  if (unusable.isEmpty()) return;
  desktop_.gate().post([this, unusable] { desktop_.tellOfUnusable(unusable); });
}

void RequestIntake::openDocuments(const QStringList& fileURIs) {
  for (const QString& uri : fileURIs) openDocument(uri.toUtf8());
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
  static_cast<void>(
      desktop_.pacedIntake().add(std::move(item), static_cast<std::size_t>(Request::kTextSize + size)));
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

// SPDX-License-Identifier: MIT
//
// URLs from other programs: the two Apple events, and the Services menu.
//
// What is no URL, no file or no file with a URL is passed over in silence. A handler never fails: whoever
// sent the event learns no more than that it came.

#include "app/MyAppController.h"
#include "app/Pasteboard.h"
#include "appleevents/AppleEventManager.h"
#include "appleevents/FSRefTable.h"
#include "classify/NSStringExtensions.h"
#include "platform/ResourceFork.h"

namespace quillforth::app {

namespace {

constexpr common::FourCharCode kCoreEventClass = common::FourCC("aevt");
constexpr common::FourCharCode kOpenDocuments = common::FourCC("odoc");
constexpr common::FourCharCode kGetURL = common::FourCC("GURL");  // class and ID

// The file that an item of an event refers to; nothing when it is no valid reference.
std::optional<platform::FileReference> FileOfItem(const platform::AEDescriptor& item,
                                                  platform::FSRefTable& references) {
  const platform::DescriptorResult coerced = references.coerce(item);
  if (coerced.status != common::kNoError) return std::nullopt;
  if (coerced.descriptor.data().size() != platform::FSRefTable::kReferenceLength) return std::nullopt;
  return references.fileOf(coerced.descriptor.data());
}

}  // namespace

std::optional<QString> URLInFile(const platform::FileReference& file, platform::ResourceManager& resources) {
  const std::unique_ptr<platform::ResourceFork> fork = resources.openResourceFork(file);
  if (fork == nullptr || fork->countResources(platform::kURLResourceType) == 0) return std::nullopt;
  const std::optional<QByteArrayView> bytes = fork->resource(platform::kURLResourceType, 1);
  return bytes && !bytes->isEmpty() ? classify::stringWithUTF8String(*bytes) : std::nullopt;
}

void MyAppController::registerMyApp() {
  if (host_.events == nullptr) return;
  using platform::AppleEvent;
  const auto install = [this](common::FourCharCode eventClass, common::FourCharCode eventID,
                              void (MyAppController::*handler)(const AppleEvent&, AppleEvent&)) {
    host_.events->dispatcher.installHandler(eventClass, eventID,
                                            [this, handler](const AppleEvent& event, AppleEvent& reply) {
                                              (this->*handler)(event, reply);
                                              return common::kNoError;
                                            });
  };
  install(kCoreEventClass, kOpenDocuments, &MyAppController::openWithReplyEvent);
  install(kGetURL, kGetURL, &MyAppController::getUrlWithReplyEvent);
}

void MyAppController::removeEventHandlers() {
  if (host_.events == nullptr) return;
  host_.events->dispatcher.removeHandler(kCoreEventClass, kOpenDocuments);
  host_.events->dispatcher.removeHandler(kGetURL, kGetURL);
}

void MyAppController::openWithReplyEvent(const platform::AppleEvent& event, platform::AppleEvent& /*reply*/) {
  const platform::AEDescriptor* files = event.parameters().field(platform::event_keyword::kDirectObject);
  if (files == nullptr || files->type() != platform::descriptor_type::kList) return;
  for (const platform::AEDescriptor::Item& item : files->items()) {
    const std::optional<platform::FileReference> file = FileOfItem(item.value, host_.events->references);
    const std::optional<QString> url = file ? URLInFile(*file, host_.events->resources) : std::nullopt;
    if (url) takeURL(*url, true);
  }
}

void MyAppController::getUrlWithReplyEvent(const platform::AppleEvent& event,
                                           platform::AppleEvent& /*reply*/) {
  const platform::DescriptorResult object =
      event.parameter(platform::event_keyword::kDirectObject, platform::descriptor_type::kUnicodeText);
  const QString url = platform::UnicodeTextValue(object.descriptor).value_or(QString());
  if (!url.isEmpty()) handleGetURL(url);
}

void MyAppController::handleGetURL(const QString& urlString) {
  const std::optional<platform::URL> url = platform::URL::URLWithString(urlString);
  const QString host = url ? url->host() : QString();
  if (!host.isEmpty()) takeURL(host, true);
}

void MyAppController::downloadURLUserDataError(const Pasteboard& pasteboard, const QString& /*userData*/,
                                               QString* error) {
  if (error != nullptr) *error = QString();
  const QString string = pasteboard.stringForType(kStringPasteboardType);
  if (!string.isNull()) takeURL(string, false);
}

}  // namespace quillforth::app

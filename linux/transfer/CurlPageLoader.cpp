// SPDX-License-Identifier: MIT

#include "linux/transfer/CurlPageLoader.h"

#include <utility>

#include "linux/transfer/ContentCoding.h"
#include "linux/transfer/Fetch.h"

namespace quillforth::platform {

namespace {

// How often the loader checks whether the load is given up.
constexpr std::chrono::milliseconds kLookInterval{100};

TransferOutcome Decode(const Fetch& fetch, QByteArray& page) {
  const std::optional<HTTPResponseHeader> header = fetch.header();
  if (!header) return {};
  return UndoContentCodings(header->valuesOfField("Content-Encoding"), PageLoader::kMaxPageLength, page);
}

PageLoad Failed(const TransferOutcome& outcome) {
  return {std::nullopt, outcome.sentence(), {}, outcome.failure()};
}

}  // namespace

PageLoad CurlPageLoader::resourceData(const URL& url) {
  if (!CanBeFetched(url)) return Failed({OutcomeKind::unsupportedURL});
  Fetch fetch(thread_, {.purpose = Purpose::page,
                        .url = url.absoluteString().toStdString(),
                        .maxBodyLength = kMaxPageLength,
                        .stallTimeout = stallLimit_});
  QByteArray page(0, '\0');  // not null: an empty page is a page
  while (!isGivenUp_ && !thread_.isGivingUp()) {
    if (!fetch.wait(Fetch::Clock::now() + kLookInterval)) continue;
    page.append(QByteArray::fromStdString(fetch.takeBytes()));
    const std::optional<TransferOutcome> outcome = fetch.outcome();
    if (!outcome) continue;
    const TransferOutcome decoded = outcome->isWhole() ? Decode(fetch, page) : *outcome;
    if (!decoded.isWhole()) return Failed(decoded);
    return {std::move(page), {}, QString::fromStdString(fetch.url()), {}};
  }
  return {};
}

}  // namespace quillforth::platform

// SPDX-License-Identifier: MIT

#include "platform/linux/CurlPageLoader.h"

#include <utility>

#include "platform/linux/Fetch.h"

namespace quillforth::platform {

namespace {

// So often it is looked whether the load is given up.
constexpr std::chrono::milliseconds kLookInterval{100};

}  // namespace

PageLoad CurlPageLoader::load(const URL& url) {
  if (!CanBeFetched(url)) return {std::nullopt, TransferOutcome{OutcomeKind::unsupportedURL}.sentence()};
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
    if (!outcome->isWhole()) return {std::nullopt, outcome->sentence()};
    return {std::move(page), {}};
  }
  return {};
}

}  // namespace quillforth::platform

// SPDX-License-Identifier: MIT

#include "linux/transfer/LookAhead.h"

#include <algorithm>
#include <utility>

namespace quillforth::platform {

namespace {

// An FTP connection serves one file at a time, and its end may have to be waited for.
bool CanGoAhead(const URL& url) {
  return CanBeFetched(url) && url.scheme() != u"ftp";
}

}  // namespace

// What is named twice is asked for twice.
void LookAhead::expect(const std::vector<WebDownloadRequest>& requests, const std::string& folder) {
  Items before = std::exchange(items_, {});
  for (const WebDownloadRequest& request : requests) {
    if (folder.empty() || !CanGoAhead(request.url)) continue;
    const auto known = std::ranges::find_if(
        before, [&](const Item& item) { return item.isFor(request) && item.folder == folder; });
    if (known != before.end()) {
      items_.push_back(std::move(*known));
      before.erase(known);
    } else {
      items_.push_back({request.url.absoluteString(), request.referrer, folder, thread_.newId()});
      thread_.post(StartCommand{make_(items_.back().id, request, folder)});
    }
  }
  for (const Item& item : before) thread_.post(CancelCommand{item.id});
}

std::optional<TransferId> LookAhead::take(const WebDownloadRequest& request) {
  const auto found = std::ranges::find_if(items_, [&](const Item& item) { return item.isFor(request); });
  if (found == items_.end()) return std::nullopt;
  const TransferId id = found->id;
  items_.erase(found);
  return id;
}

}  // namespace quillforth::platform

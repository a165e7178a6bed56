// SPDX-License-Identifier: MIT

#include "linkextract/ScanPage.h"

#include <cstddef>
#include <cstdint>
#include <limits>

#include "linkextract/AttributeScan.h"
#include "linkextract/BareLinks.h"
#include "linkextract/LinkCollector.h"
#include "linkextract/TextSearch.h"

namespace quillforth::linkextract {

void ScanPage(std::string_view page, const common::BoundedText& base, LinkTable& table,
              const classify::CExtensionMap& extensions) {
  page = common::UpToNul(page);
  if (page.size() > std::numeric_limits<std::int32_t>::max()) return;
  table.setBase(base);
  LinkCollector collector(page, table);
  constexpr std::size_t kBytesForEachLink = 256;  // of an ordinary page
  table.reserve(page.size() / kBytesForEachLink);
  FindBareLinks(page, KnownSuffixes(extensions), collector);
  collector.beginSecondPass();
  ScanAttributes(page, collector);
  collector.finish();
}

}  // namespace quillforth::linkextract

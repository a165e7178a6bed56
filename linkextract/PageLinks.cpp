// SPDX-License-Identifier: MIT

#include "linkextract/PageLinks.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "linkextract/BareLinks.h"
#include "linkextract/LinkCollector.h"
#include "linkextract/PageText.h"

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

common::BoundedText FindPageBase(std::string_view page, std::string_view url) {
  const common::BoundedText own(url);
  const std::optional<TextBetween> head = FindBetween(page, "<head>", "</head>");
  if (!head || FindNoCase(head->text, "<base href=") == std::string_view::npos) return own;
  const std::optional<TextBetween> base = FindBetween(page, "<base href=\"", "\"");
  return base && !base->text.empty() ? common::BoundedText(base->text) : own;
}

LinkTable ExtractPageLinks(std::string_view bytes, std::string_view url,
                           const classify::CExtensionMap& extensions) {
  LinkTable table;
  const std::optional<PageText> page = DecodePage(bytes);
  if (!page) return table;
  const common::BoundedText base = FindPageBase(page->view(), url);
  if (!base.empty()) ScanPage(page->view(), base, table, extensions);
  return table;
}

}  // namespace quillforth::linkextract

// SPDX-License-Identifier: MIT

#include "linkextract/PageLinks.h"

#include <optional>

#include "linkextract/PageText.h"
#include "linkextract/ScanPage.h"
#include "linkextract/TextSearch.h"

namespace quillforth::linkextract {

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

// SPDX-License-Identifier: MIT

#include "classify/ExtensionMap.h"

#include <algorithm>

namespace quillforth::classify {

const platform::ICMapEntry* CExtensionMap::find(std::string_view key) const {
  const auto found = index_.find(key);
  return found == index_.end() ? nullptr : &found->second->record;
}

CExtensionMap::Node& CExtensionMap::findOrInsert(const common::BoundedText& key,
                                                 const platform::ICMapEntry& record) {
  if (const auto found = index_.find(key.view()); found != index_.end()) return *found->second;
  Node& node = *nodes_.emplace_back(std::make_unique<Node>(Node{key, record}));
  index_.emplace(node.key.view(), &node);
  longestKey_ = std::max(longestKey_, key.size());
  return node;
}

}  // namespace quillforth::classify

// SPDX-License-Identifier: MIT
//
// From a file-name extension to its mapping record.
//
// Filled once at launch and only read afterwards, then from any thread. Keys carry their leading "." and are
// compared byte by byte: ".HTML" and ".html" are two keys.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/BoundedText.h"
#include "platform/InternetConfigComponent.h"

namespace quillforth::classify {

class CExtensionMap {
 public:
  struct Node {
    common::BoundedText key;
    platform::ICMapEntry record;
  };

  /// The record under exactly this key, or null. Constant time.
  [[nodiscard]] const platform::ICMapEntry* find(std::string_view key) const {
    const auto found = index_.find(key);
    return found == index_.end() ? nullptr : &found->second->record;
  }
  /// The node under `key`: an existing one unchanged, else a new one that holds `record`, at the end of the
  /// order. Nodes stay where they are for the map's life.
  Node& findOrInsert(const common::BoundedText& key, const platform::ICMapEntry& record) {
    if (const auto found = index_.find(key.view()); found != index_.end()) return *found->second;
    Node& node = *nodes_.emplace_back(std::make_unique<Node>(Node{key, record}));
    index_.emplace(node.key.view(), &node);
    longestKey_ = std::max(longestKey_, key.size());
    return node;
  }
  [[nodiscard]] std::size_t size() const { return nodes_.size(); }
  /// In the order of first insertion.
  [[nodiscard]] const std::vector<std::unique_ptr<Node>>& nodes() const { return nodes_; }
  /// Bytes of the longest key; 0 when empty.
  [[nodiscard]] std::size_t longestKey() const { return longestKey_; }

 private:
  std::vector<std::unique_ptr<Node>> nodes_;
  std::unordered_map<std::string_view, Node*> index_;  // views into the nodes' keys
  std::size_t longestKey_ = 0;
};

}  // namespace quillforth::classify

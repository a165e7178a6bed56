// SPDX-License-Identifier: MIT

#include "linkextract/LinkTable.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>

#include "common/BoundedText.h"

namespace quillforth::linkextract {

namespace {

using common::BoundedText;

/// Other in every process: a page cannot be written to make its links collide.
std::uint64_t ProcessSeed() {
  static const std::uint64_t seed = [] {
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
  }();
  return seed;
}

/// Both halves of the 128-bit product, folded.
std::uint64_t Mixed(std::uint64_t a, std::uint64_t b) noexcept {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t Load(const char* bytes, std::size_t count) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  return word;
}

std::uint32_t HashOf(std::string_view key) noexcept {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
  const std::uint64_t seed = ProcessSeed();
  std::uint64_t hash = seed ^ (key.size() * kFactor);
  for (; key.size() > 8; key.remove_prefix(8)) hash = Mixed(hash ^ Load(key.data(), 8), seed | 1) + kFactor;
  hash = Mixed(hash ^ Load(key.data(), key.size()), kFactor ^ seed >> 1);
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace

LinkTable::Insertion LinkTable::insert(std::string_view key) {
  key = key.substr(0, BoundedText::kMaxLength);
  const std::uint32_t hash = HashOf(key);
  if (LinkEntry* const found = find(key, hash)) return {*found, false};
  if (buckets_.size() < 2 * (size_ + 1)) growBuckets();

  LinkEntry& entry = *common::RecordPool<LinkEntry>::take();
  entry.key_ = store(key);
  entry.keyLength_ = static_cast<std::uint8_t>(key.size());
  entry.value_ = nullptr;
  entry.valueLength_ = 0;
  entry.hash_ = hash;
  linkIntoBucket(entry);
  (head_ == nullptr ? head_ : tail_->next) = &entry;
  tail_ = &entry;
  ++size_;
  return {entry, true};
}

void LinkTable::setValue(LinkEntry& entry, std::string_view value) {
  value = value.substr(0, BoundedText::kMaxLength);
  if (value.size() > entry.valueLength_) {
    entry.value_ = store(value);
  } else if (!value.empty()) {
    std::memmove(entry.value_, value.data(), value.size());
  }
  entry.valueLength_ = static_cast<std::uint8_t>(value.size());
}

void LinkTable::clear() noexcept {
  if (head_ != nullptr) common::RecordPool<LinkEntry>::release(head_, tail_);
  if (newestBlock_ != nullptr) common::RecordPool<TextBlock>::release(newestBlock_, oldestBlock_);
  buckets_.clear();
  head_ = tail_ = nullptr;
  size_ = 0;
  newestBlock_ = oldestBlock_ = nullptr;
  used_ = sizeof(TextBlock::bytes);
}

LinkEntry* LinkTable::find(std::string_view key, std::uint32_t hash) const noexcept {
  if (buckets_.empty()) return nullptr;
  LinkEntry* entry = buckets_[hash & (buckets_.size() - 1)];
  while (entry != nullptr && (entry->hash_ != hash || entry->key() != key)) entry = entry->sameBucket_;
  return entry;
}

void LinkTable::growBuckets() {
  constexpr std::size_t kFewest = 256;
  buckets_.assign(std::max(kFewest, 2 * buckets_.size()), nullptr);
  for (LinkEntry* entry = head_; entry != nullptr; entry = entry->next) linkIntoBucket(*entry);
}

void LinkTable::linkIntoBucket(LinkEntry& entry) noexcept {
  LinkEntry*& bucket = buckets_[entry.hash_ & (buckets_.size() - 1)];
  entry.sameBucket_ = bucket;
  bucket = &entry;
}

char* LinkTable::store(std::string_view text) {
  if (sizeof(TextBlock::bytes) - used_ < text.size()) {
    TextBlock* const block = common::RecordPool<TextBlock>::take();
    block->next = newestBlock_;
    if (newestBlock_ == nullptr) oldestBlock_ = block;
    newestBlock_ = block;
    used_ = 0;
  }
  if (text.empty()) return nullptr;
  char* const place = newestBlock_->bytes + used_;
  std::memcpy(place, text.data(), text.size());
  used_ += text.size();
  return place;
}

void LinkTable::swap(LinkTable& other) noexcept {
  std::swap(buckets_, other.buckets_);
  std::swap(head_, other.head_);
  std::swap(tail_, other.tail_);
  std::swap(size_, other.size_);
  std::swap(newestBlock_, other.newestBlock_);
  std::swap(oldestBlock_, other.oldestBlock_);
  std::swap(used_, other.used_);
}

}  // namespace quillforth::linkextract

// SPDX-License-Identifier: MIT

#include "linkextract/LinkTable.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <random>
#include <utility>

#include "common/BoundedText.h"
#include "common/RecordPool.h"
#include "linkextract/ByteScan.h"

namespace quillforth::linkextract {

namespace {

using common::BoundedText;

/// Other in every process: a page cannot be written to make its links collide.
const std::uint64_t kSeed = [] {
  std::random_device device;
  return std::uint64_t{device()} << 32 | device() | 1;
}();

/// Both halves of the 128-bit product, folded.
std::uint64_t Mixed(std::uint64_t a, std::uint64_t b) noexcept {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::string_view Bounded(std::string_view text) {
  return text.substr(0, BoundedText::kMaxLength);
}

}  // namespace

std::uint32_t LinkTable::hashOf(std::string_view key) noexcept {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
  key = Bounded(key);
  std::uint64_t hash = kSeed ^ (key.size() * kFactor);
  for (; key.size() > 8; key.remove_prefix(8)) hash = Mixed(hash ^ WordAt(key), kSeed) + kFactor;
  hash = Mixed(hash ^ WordAt(key), kFactor ^ kSeed << 1);
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

void LinkTable::expect(std::uint32_t hash) const noexcept {
  if (!buckets_.empty()) __builtin_prefetch(&buckets_[bucketOf(hash)]);
}

void LinkTable::expectEntry(std::uint32_t hash) const noexcept {
  if (buckets_.empty()) return;
  const LinkEntry* const entry = buckets_[bucketOf(hash)];
  if (entry == nullptr) return;
  __builtin_prefetch(entry);
  __builtin_prefetch(entry + 1);  // the key, often in the next cache line
}

LinkTable::Insertion LinkTable::insert(std::string_view key, std::uint32_t hash) {
  key = Bounded(key);
  if (size_ >= buckets_.size()) growBuckets();
  LinkEntry* entry = buckets_[bucketOf(hash)];
  while (entry != nullptr && (entry->hash_ != hash || entry->key() != key)) entry = entry->sameBucket_;
  if (entry != nullptr) return {*entry, false};

  entry = new (allocate(sizeof(LinkEntry) + key.size(), alignof(LinkEntry))) LinkEntry;
  std::copy(key.begin(), key.end(), reinterpret_cast<char*>(entry + 1));
  entry->keyLength_ = static_cast<std::uint8_t>(key.size());
  entry->hash_ = hash;
  linkIntoBucket(*entry);
  (head_ == nullptr ? head_ : tail_->next_) = entry;
  tail_ = entry;
  ++size_;
  return {*entry, true};
}

void LinkTable::setValue(LinkEntry& entry, std::string_view value) {
  value = Bounded(value);
  if (value.size() > entry.valueLength_) entry.value_ = allocate(value.size(), 1);
  std::copy(value.begin(), value.end(), entry.value_);
  entry.valueLength_ = static_cast<std::uint8_t>(value.size());
}

void LinkTable::clear() noexcept {
  if (newestBlock_ != nullptr) common::RecordPool<Block>::release(newestBlock_, oldestBlock_);
  buckets_.clear();
  head_ = tail_ = nullptr;
  size_ = 0;
  newestBlock_ = oldestBlock_ = nullptr;
  used_ = sizeof(Block::bytes);
}

void LinkTable::growBuckets() {
  constexpr std::size_t kFewest = 512;
  buckets_.assign(std::max(kFewest, 4 * buckets_.size()), nullptr);
  for (LinkEntry* entry = head_; entry != nullptr; entry = entry->next_) linkIntoBucket(*entry);
}

void LinkTable::linkIntoBucket(LinkEntry& entry) noexcept {
  LinkEntry*& bucket = buckets_[bucketOf(entry.hash_)];
  entry.sameBucket_ = bucket;
  bucket = &entry;
}

char* LinkTable::allocate(std::size_t size, std::size_t alignment) {
  std::size_t begin = (used_ + alignment - 1) / alignment * alignment;
  if (begin + size > sizeof(Block::bytes)) {
    Block* const block = common::RecordPool<Block>::take();
    block->next = newestBlock_;
    if (newestBlock_ == nullptr) oldestBlock_ = block;
    newestBlock_ = block;
    begin = 0;
  }
  used_ = begin + size;
  return newestBlock_->bytes + begin;
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

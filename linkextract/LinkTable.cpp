// SPDX-License-Identifier: MIT

#include "linkextract/LinkTable.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <utility>

#include "common/BoundedText.h"
#include "common/ScratchMemory.h"
#include "linkextract/ByteScan.h"

namespace quillforth::linkextract {

namespace {

using common::BoundedText;

/// Different in every process, so that no page can be written to make its links collide.
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
  if (!slots_.empty()) __builtin_prefetch(&slots_[firstSlotOf(hash)]);
}

void LinkTable::expectEntry(std::uint32_t hash) const noexcept {
  if (slots_.empty()) return;
  const Slot& slot = slots_[firstSlotOf(hash)];
  if (slot.entry == 0 || slot.hash != hash) return;
  const LinkEntry* const entry = entryAt(slot.entry);
  __builtin_prefetch(entry);
  __builtin_prefetch(entry + 2);  // the end of a key of usual length, often in the next cache line
}

void LinkTable::setBase(const BoundedText& base) {
  bases_.push_front(std::make_shared<const LinkResolver>(base));
}

const LinkEntry& LinkTable::insert(std::string_view key, std::uint32_t hash) {
  key = Bounded(key);
  LinkEntry* entry = find(key, hash);
  if (entry == nullptr) {
    if (4 * size_ >= 3 * slots_.size()) growSlots(2 * slots_.size());
    takeSlot({hash, append(key)});
    entry = tail_;
  }
  if (!bases_.empty()) entry->base_ = &bases_.front();
  return *entry;
}

LinkEntry* LinkTable::find(std::string_view key, std::uint32_t hash) const noexcept {
  if (slots_.empty()) return nullptr;
  for (std::size_t slot = firstSlotOf(hash); slots_[slot].entry != 0; slot = slotAfter(slot)) {
    if (slots_[slot].hash != hash) continue;
    LinkEntry* const entry = entryAt(slots_[slot].entry);
    if (entry->key() == key) return entry;
  }
  return nullptr;
}

void LinkTable::clear() noexcept {
  if (!blocks_.empty()) common::RecordPool<Block>::release(blocks_.back(), blocks_.front());
  slots_.clear();
  blocks_.clear();
  bases_.clear();
  head_ = tail_ = nullptr;
  size_ = 0;
  used_ = sizeof(Block::bytes);
}

void LinkTable::reserve(std::size_t count) {
  const std::size_t wanted = std::bit_ceil(count + count / 3 + 1);
  if (wanted > slots_.size()) growSlots(wanted);
}

void LinkTable::growSlots(std::size_t count) {
  constexpr std::size_t kFewest = 1024;
  decltype(slots_) old(std::max(kFewest, count), Slot{});
  old.swap(slots_);
  for (const Slot& taken : old) {
    if (taken.entry != 0) takeSlot(taken);
  }
}

void LinkTable::takeSlot(Slot taken) noexcept {
  std::size_t slot = firstSlotOf(taken.hash);
  while (slots_[slot].entry != 0) slot = slotAfter(slot);
  slots_[slot] = taken;
}

LinkTable::EntryOffset LinkTable::append(std::string_view key) {
  char* const bytes = allocate(sizeof(LinkEntry) + key.size());
  auto* const entry = new (bytes) LinkEntry;
  std::copy(key.begin(), key.end(), reinterpret_cast<char*>(entry + 1));
  entry->keyLength_ = static_cast<std::uint8_t>(key.size());
  (head_ == nullptr ? head_ : tail_->next_) = entry;
  tail_ = entry;
  ++size_;
  const auto bytesBefore = static_cast<std::size_t>(bytes - reinterpret_cast<char*>(blocks_.back()));
  return static_cast<EntryOffset>((blocks_.size() - 1) * kOffsetsInBlock + bytesBefore / alignof(LinkEntry));
}

LinkEntry* LinkTable::entryAt(EntryOffset offset) const noexcept {
  char* const block = reinterpret_cast<char*>(blocks_[offset / kOffsetsInBlock]);
  return reinterpret_cast<LinkEntry*>(block + offset % kOffsetsInBlock * alignof(LinkEntry));
}

char* LinkTable::allocate(std::size_t size) {
  std::size_t begin = (used_ + alignof(LinkEntry) - 1) / alignof(LinkEntry) * alignof(LinkEntry);
  if (begin + size > sizeof(Block::bytes)) {
    addBlock();
    begin = 0;
  }
  used_ = begin + size;
  return blocks_.back()->bytes + begin;
}

void LinkTable::addBlock() {
  if (blocks_.size() > std::numeric_limits<EntryOffset>::max() / kOffsetsInBlock) throw std::bad_alloc();
  Block* const block = common::RecordPool<Block>::take();
  block->next = blocks_.empty() ? nullptr : blocks_.back();
  blocks_.push_back(block);
}

void LinkTable::swap(LinkTable& other) noexcept {
  std::swap(slots_, other.slots_);
  std::swap(head_, other.head_);
  std::swap(tail_, other.tail_);
  std::swap(size_, other.size_);
  std::swap(bases_, other.bases_);
  std::swap(blocks_, other.blocks_);
  std::swap(used_, other.used_);
}

}  // namespace quillforth::linkextract

// SPDX-License-Identifier: MIT

#include "appleevents/FSRefTable.h"

#include <QRandomGenerator>
#include <QtEndian>
#include <array>

#include "net/URL.h"

namespace quillforth::platform {

namespace {

QByteArray NewReference(std::uint64_t number) {
  std::array<quint32, FSRefTable::kReferenceLength / sizeof(quint32)> words{};
  QRandomGenerator::system()->fillRange(words.data(), words.size());
  QByteArray bytes(reinterpret_cast<const char*>(words.data()), FSRefTable::kReferenceLength);
  qToBigEndian(number, bytes.data());
  return bytes;
}

}  // namespace

QByteArray FSRefTable::makeReference(const FileReference& file) {
  owner_.check();
  if (entries_.size() == kMaxReferences) {
    entries_.pop_front();
    ++firstNumber_;
  }
  return entries_.emplace_back(Entry{NewReference(firstNumber_ + entries_.size()), file}).reference;
}

std::optional<FileReference> FSRefTable::fileOf(QByteArrayView reference) const {
  owner_.check();
  if (reference.size() != kReferenceLength) return std::nullopt;
  // A number before the first one wraps, and is beyond the last.
  const std::uint64_t place = qFromBigEndian<std::uint64_t>(reference.data()) - firstNumber_;
  if (place >= entries_.size() || entries_[place].reference != reference) return std::nullopt;
  return entries_[place].file;
}

DescriptorResult FSRefTable::coerce(const AEDescriptor& descriptor) {
  if (descriptor.type() != descriptor_type::kFileURL) {
    return CoerceDescriptor(descriptor, descriptor_type::kFSRef);
  }
  const std::optional<FileReference> file = FileAtURL(descriptor.data());
  if (!file) return {common::kAECoercionFailed, {}};
  return {common::kNoError, AEDescriptor(descriptor_type::kFSRef, makeReference(*file))};
}

}  // namespace quillforth::platform

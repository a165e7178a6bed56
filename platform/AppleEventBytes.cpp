// SPDX-License-Identifier: MIT

#include "platform/AppleEventBytes.h"

#include <QtEndian>

namespace quillforth::platform {

namespace {

constexpr qsizetype kCodeLength = 4;
constexpr qsizetype kHeaderLength = 8;

class Writer {
 public:
  // False beyond a limit; what was written then is of no use.
  bool write(const AEDescriptor& descriptor, int depth) {
    appendNumber(descriptor.type());
    const qsizetype lengthPosition = bytes_.size();
    appendNumber(0);
    if (IsContainerType(descriptor.type()) ? !writeItems(descriptor, depth) : !writeData(descriptor.data())) {
      return false;
    }
    const qsizetype length = bytes_.size() - lengthPosition - kCodeLength;
    qToBigEndian(static_cast<quint32>(length), bytes_.data() + lengthPosition);
    return true;
  }

  [[nodiscard]] QByteArray takeBytes() { return std::move(bytes_); }

 private:
  bool writeData(const QByteArray& data) {
    if (data.size() > kMaxFlatLength - bytes_.size()) return false;
    bytes_.append(data);
    return true;
  }

  bool writeItems(const AEDescriptor& container, int depth) {
    const bool isList = container.type() == descriptor_type::kList;
    items_ += container.items().size();
    if (depth >= kMaxDescriptorDepth || items_ > kMaxDescriptorItems) return false;
    if (!isList && container.items().size() > kMaxRecordFields) return false;
    for (const AEDescriptor::Item& item : container.items()) {
      if (!isList) appendNumber(item.keyword);
      if (!write(item.value, depth + 1)) return false;
    }
    return bytes_.size() <= kMaxFlatLength;
  }

  void appendNumber(quint32 number) {
    const quint32 bigEndian = qToBigEndian(number);
    bytes_.append(reinterpret_cast<const char*>(&bigEndian), sizeof bigEndian);
  }

  QByteArray bytes_;
  std::size_t items_ = 0;
};

class Reader {
 public:
  // One descriptor off the front of `bytes`; nothing when there is none.
  std::optional<AEDescriptor> read(QByteArrayView& bytes, int depth) {
    if (bytes.size() < kHeaderLength) return std::nullopt;
    const common::FourCharCode type = takeNumber(bytes);
    const quint32 length = takeNumber(bytes);
    if (length > static_cast<quint64>(bytes.size())) return std::nullopt;
    const QByteArrayView contents = bytes.first(static_cast<qsizetype>(length));
    bytes = bytes.sliced(contents.size());
    if (IsContainerType(type)) return readItems(type, contents, depth);
    if (type == descriptor_type::kNull && !contents.isEmpty()) return std::nullopt;
    return AEDescriptor(type, contents.toByteArray());
  }

 private:
  std::optional<AEDescriptor> readItems(common::FourCharCode type, QByteArrayView contents, int depth) {
    if (depth >= kMaxDescriptorDepth) return std::nullopt;
    AEDescriptor container(type, {});
    while (!contents.isEmpty()) {
      if (++items_ > kMaxDescriptorItems || !readItem(container, contents, depth)) return std::nullopt;
    }
    return container;
  }

  bool readItem(AEDescriptor& container, QByteArrayView& contents, int depth) {
    const bool isList = container.type() == descriptor_type::kList;
    common::FourCharCode keyword = 0;
    if (!isList) {
      if (contents.size() < kCodeLength || container.items().size() >= kMaxRecordFields) return false;
      keyword = takeNumber(contents);
      if (container.field(keyword) != nullptr) return false;
    }
    std::optional<AEDescriptor> item = read(contents, depth + 1);
    if (!item) return false;
    if (isList) {
      container.append(std::move(*item));
    } else {
      container.setField(keyword, std::move(*item));
    }
    return true;
  }

  static quint32 takeNumber(QByteArrayView& bytes) {
    const auto number = qFromBigEndian<quint32>(bytes.data());
    bytes = bytes.sliced(kCodeLength);
    return number;
  }

  std::size_t items_ = 0;
};

}  // namespace

std::optional<QByteArray> FlattenDescriptor(const AEDescriptor& descriptor) {
  Writer writer;
  if (!writer.write(descriptor, 0)) return std::nullopt;
  QByteArray bytes = writer.takeBytes();
  return bytes.size() > kMaxFlatLength ? std::nullopt : std::optional(std::move(bytes));
}

DescriptorResult UnflattenDescriptor(QByteArrayView bytes) {
  if (bytes.size() > kMaxFlatLength) return {common::kAECorruptData, {}};
  std::optional<AEDescriptor> descriptor = Reader().read(bytes, 0);
  if (!descriptor || !bytes.isEmpty()) return {common::kAECorruptData, {}};
  return {common::kNoError, std::move(*descriptor)};
}

}  // namespace quillforth::platform

// SPDX-License-Identifier: MIT

#include "appleevents/AppleEvents.h"

#include <QtEndian>
#include <algorithm>
#include <cstring>

namespace quillforth::platform {

namespace {

constexpr qsizetype kUsualItems = 4;  // as an object specifier has

template <typename Number>
QByteArray BigEndianBytes(Number value) {
  QByteArray bytes(sizeof(Number), Qt::Uninitialized);
  qToBigEndian(value, bytes.data());
  return bytes;
}

template <typename Number>
std::optional<Number> NumberOf(const AEDescriptor& descriptor, common::FourCharCode type) {
  if (descriptor.type() != type || descriptor.data().size() != sizeof(Number)) return std::nullopt;
  return qFromBigEndian<Number>(descriptor.data().constData());
}

}  // namespace

bool IsContainerType(common::FourCharCode type) noexcept {
  return type == descriptor_type::kList || type == descriptor_type::kRecord ||
         type == descriptor_type::kObjectSpecifier;
}

AEDescriptor::AEDescriptor(common::FourCharCode type, QByteArray data) : type_(type) {
  if (IsContainerType(type)) {
    items_.reserve(kUsualItems);
  } else if (!isNull()) {
    data_ = std::move(data);
  }
}

bool operator==(const AEDescriptor& a, const AEDescriptor& b) {
  return a.type_ == b.type_ && a.data_ == b.data_ && a.items_ == b.items_;
}

const AEDescriptor* AEDescriptor::field(common::FourCharCode keyword) const& {
  const auto found = std::find_if(items_.begin(), items_.end(),
                                  [keyword](const Item& item) { return item.keyword == keyword; });
  return found == items_.end() ? nullptr : &found->value;
}

const AEDescriptor* AEDescriptor::descriptorAtIndex(std::int32_t index) const& {
  const bool isThere = index >= 1 && index <= items_.size();
  return isThere ? &items_[index - 1].value : nullptr;
}

void AEDescriptor::append(AEDescriptor item) {
  items_.push_back({descriptor_type::kWildcard, std::move(item)});
}

void AEDescriptor::setField(common::FourCharCode keyword, AEDescriptor value) {
  const auto found = std::find_if(items_.begin(), items_.end(),
                                  [keyword](const Item& item) { return item.keyword == keyword; });
  if (found != items_.end()) {
    found->value = std::move(value);
  } else {
    items_.push_back({keyword, std::move(value)});
  }
}

AEDescriptor Int16Descriptor(std::int16_t value) {
  return {descriptor_type::kInt16, BigEndianBytes(value)};
}

AEDescriptor Int32Descriptor(std::int32_t value) {
  return {descriptor_type::kInt32, BigEndianBytes(value)};
}

AEDescriptor Float64Descriptor(double value) {
  return {descriptor_type::kFloat64, BigEndianBytes(value)};
}

AEDescriptor CodeDescriptor(common::FourCharCode type, common::FourCharCode code) {
  return {type, BigEndianBytes(code)};
}

AEDescriptor UnicodeTextDescriptor(QStringView text) {
  return {descriptor_type::kUnicodeText,
          QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2)};
}

AEDescriptor ObjectSpecifier(common::FourCharCode desiredClass, AEDescriptor container,
                             common::FourCharCode keyForm, AEDescriptor keyData) {
  AEDescriptor specifier(descriptor_type::kObjectSpecifier, {});
  specifier.setField(event_keyword::kKeyForm, CodeDescriptor(descriptor_type::kEnumerated, keyForm));
  specifier.setField(event_keyword::kDesiredClass, CodeDescriptor(descriptor_type::kType, desiredClass));
  specifier.setField(event_keyword::kKeyData, std::move(keyData));
  specifier.setField(event_keyword::kContainer, std::move(container));
  return specifier;
}

std::optional<std::int16_t> Int16Value(const AEDescriptor& descriptor) {
  return NumberOf<std::int16_t>(descriptor, descriptor_type::kInt16);
}

std::optional<std::int32_t> Int32Value(const AEDescriptor& descriptor) {
  return NumberOf<std::int32_t>(descriptor, descriptor_type::kInt32);
}

std::optional<double> Float64Value(const AEDescriptor& descriptor) {
  return NumberOf<double>(descriptor, descriptor_type::kFloat64);
}

std::optional<common::FourCharCode> CodeValue(const AEDescriptor& descriptor, common::FourCharCode type) {
  return NumberOf<common::FourCharCode>(descriptor, type);
}

std::optional<QString> UnicodeTextValue(const AEDescriptor& descriptor) {
  if (descriptor.type() != descriptor_type::kUnicodeText) return std::nullopt;
  QString text(descriptor.data().size() / 2, Qt::Uninitialized);
  // Copied as bytes: the data of a descriptor need not be aligned.
  if (!text.isEmpty()) {
    std::memcpy(text.data(), descriptor.data().constData(), static_cast<std::size_t>(text.size()) * 2);
  }
  return text.isNull() ? QStringLiteral("") : text;
}

common::Status DisposeDescriptor(AEDescriptor* descriptor) {
  if (descriptor == nullptr) return common::kBadParameter;
  *descriptor = AEDescriptor();
  return common::kNoError;
}

AppleEvent::AppleEvent(common::FourCharCode eventClass, common::FourCharCode eventID, AEDescriptor target,
                       std::int16_t returnID, std::int32_t transactionID)
    : isNull_(false),
      eventClass_(eventClass),
      eventID_(eventID),
      target_(std::move(target)),
      returnID_(returnID),
      transactionID_(transactionID) {}

void AppleEvent::setParameter(common::FourCharCode keyword, AEDescriptor value) {
  parameters_.setField(keyword, std::move(value));
}

DescriptorResult AppleEvent::parameter(common::FourCharCode keyword, common::FourCharCode type) const {
  const AEDescriptor* value = parameters_.field(keyword);
  if (value == nullptr) return {common::kAEDescriptorNotFound, {}};
  return CoerceDescriptor(*value, type);
}

}  // namespace quillforth::platform

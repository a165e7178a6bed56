// SPDX-License-Identifier: MIT

#include "appleevents/AppleEvents.h"

#include <QLocale>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "net/UTF8.h"

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

namespace {

namespace type = descriptor_type;
using common::FourCharCode;
using Coercion = std::optional<AEDescriptor> (*)(const AEDescriptor& from, FourCharCode to);

std::optional<AEDescriptor> UnicodeToBytes(const AEDescriptor& from, FourCharCode to) {
  std::optional<QByteArray> bytes = UTF8OfText(*UnicodeTextValue(from));
  return bytes ? std::optional(AEDescriptor(to, std::move(*bytes))) : std::nullopt;
}

std::optional<AEDescriptor> BytesToUnicode(const AEDescriptor& from, FourCharCode /*to*/) {
  const std::optional<QString> text = TextFromUTF8(from.data());
  return text ? std::optional(UnicodeTextDescriptor(*text)) : std::nullopt;
}

std::optional<AEDescriptor> SameData(const AEDescriptor& from, FourCharCode to) {
  return AEDescriptor(to, from.data());
}

std::optional<AEDescriptor> Widened(const AEDescriptor& from, FourCharCode /*to*/) {
  const std::optional<std::int16_t> value = Int16Value(from);
  return value ? std::optional(Int32Descriptor(*value)) : std::nullopt;
}

std::optional<AEDescriptor> Narrowed(const AEDescriptor& from, FourCharCode /*to*/) {
  using Limits = std::numeric_limits<std::int16_t>;
  const std::optional<std::int32_t> value = Int32Value(from);
  if (!value || *value < Limits::min() || *value > Limits::max()) return std::nullopt;
  return Int16Descriptor(static_cast<std::int16_t>(*value));
}

QString TextOf(std::int32_t value) {
  return QString::number(value);
}

QString TextOf(double value) {
  return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

template <auto valueOf>
std::optional<AEDescriptor> NumberToText(const AEDescriptor& from, FourCharCode /*to*/) {
  const auto value = valueOf(from);
  return value ? std::optional(UnicodeTextDescriptor(TextOf(*value))) : std::nullopt;
}

std::optional<AEDescriptor> TruthToText(const AEDescriptor& from, FourCharCode /*to*/) {
  return UnicodeTextDescriptor(from.type() == type::kTrue ? u"true" : u"false");
}

std::optional<AEDescriptor> SameFields(const AEDescriptor& from, FourCharCode to) {
  AEDescriptor result(to, {});
  for (const AEDescriptor::Item& item : from.items()) result.setField(item.keyword, item.value);
  return result;
}

std::optional<AEDescriptor> RecordToSpecifier(const AEDescriptor& from, FourCharCode to) {
  const std::array fields{event_keyword::kDesiredClass, event_keyword::kContainer, event_keyword::kKeyForm,
                          event_keyword::kKeyData};
  const auto isThere = [&from](FourCharCode keyword) { return from.field(keyword) != nullptr; };
  return std::all_of(fields.begin(), fields.end(), isThere) ? SameFields(from, to) : std::nullopt;
}

struct Rule {
  FourCharCode from;
  FourCharCode to;
  Coercion coerce;
};

constexpr std::array kRules{
    Rule{type::kUnicodeText, type::kUTF8Text, UnicodeToBytes},
    Rule{type::kUnicodeText, type::kText, UnicodeToBytes},
    Rule{type::kUTF8Text, type::kUnicodeText, BytesToUnicode},
    Rule{type::kText, type::kUnicodeText, BytesToUnicode},
    Rule{type::kUTF8Text, type::kText, SameData},
    Rule{type::kText, type::kUTF8Text, SameData},
    Rule{type::kInt16, type::kInt32, Widened},
    Rule{type::kInt32, type::kInt16, Narrowed},
    Rule{type::kInt16, type::kUnicodeText, NumberToText<Int16Value>},
    Rule{type::kInt32, type::kUnicodeText, NumberToText<Int32Value>},
    Rule{type::kFloat64, type::kUnicodeText, NumberToText<Float64Value>},
    Rule{type::kTrue, type::kUnicodeText, TruthToText},
    Rule{type::kFalse, type::kUnicodeText, TruthToText},
    Rule{type::kObjectSpecifier, type::kRecord, SameFields},
    Rule{type::kRecord, type::kObjectSpecifier, RecordToSpecifier},
};

}  // namespace

DescriptorResult CoerceDescriptor(const AEDescriptor& descriptor, common::FourCharCode wanted) {
  if (descriptor.isNull() || descriptor.type() == wanted || wanted == type::kWildcard) {
    return {common::kNoError, descriptor};
  }
  const auto* rule = std::find_if(kRules.begin(), kRules.end(), [&](const Rule& candidate) {
    return candidate.from == descriptor.type() && candidate.to == wanted;
  });
  if (rule == kRules.end()) return {common::kAECoercionFailed, {}};
  std::optional<AEDescriptor> result = rule->coerce(descriptor, wanted);
  if (!result) return {common::kAECoercionFailed, {}};
  return {common::kNoError, std::move(*result)};
}

}  // namespace quillforth::platform

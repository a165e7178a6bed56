// SPDX-License-Identifier: MIT
//
// Which descriptor types turn into which.

#include <QLocale>
#include <algorithm>
#include <array>
#include <limits>

#include "appleevents/AppleEvents.h"
#include "net/UTF8.h"

namespace quillforth::platform {

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

// SPDX-License-Identifier: MIT
//
// Apple-event values: descriptors, lists, records, object specifiers and events.
//
// A descriptor is a type and its data, or, for a list, a record and an object specifier, the descriptors in
// it. All are plain values that share their data when copied. Numbers and four-character codes stand in their
// data with the first byte most significant, UTF-16 text in the host's byte order. A single value may be used
// from one thread at a time.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <cstdint>
#include <optional>
#include <utility>

#include "common/Status.h"

namespace quillforth::platform {

namespace descriptor_type {
inline constexpr common::FourCharCode kNull = common::FourCC("null");  ///< no data
inline constexpr common::FourCharCode kWildcard = common::FourCC("****");
inline constexpr common::FourCharCode kUnicodeText = common::FourCC("utxt");  ///< UTF-16, no byte-order mark
inline constexpr common::FourCharCode kUTF8Text = common::FourCC("utf8");
inline constexpr common::FourCharCode kText = common::FourCC("TEXT");   ///< default text encoding: UTF-8
inline constexpr common::FourCharCode kInt16 = common::FourCC("shor");  ///< signed
inline constexpr common::FourCharCode kInt32 = common::FourCC("long");  ///< signed
inline constexpr common::FourCharCode kFloat64 = common::FourCC("doub");
inline constexpr common::FourCharCode kTrue = common::FourCC("true");   ///< no data
inline constexpr common::FourCharCode kFalse = common::FourCC("fals");  ///< no data
inline constexpr common::FourCharCode kType =
    common::FourCC("type");  ///< the data are a type's or class's code
inline constexpr common::FourCharCode kEnumerated = common::FourCC("enum");
inline constexpr common::FourCharCode kApplicationSignature = common::FourCC("sign");
inline constexpr common::FourCharCode kFileURL = common::FourCC("furl");  ///< UTF-8, %-escapes
/// 80 bytes, which only the table that made them understands (FSRefTable.h).
inline constexpr common::FourCharCode kFSRef = common::FourCC("fsrf");
inline constexpr common::FourCharCode kList = common::FourCC("list");
inline constexpr common::FourCharCode kRecord = common::FourCC("reco");
inline constexpr common::FourCharCode kObjectSpecifier = common::FourCC("obj ");
}  // namespace descriptor_type

namespace event_keyword {
inline constexpr common::FourCharCode kDirectObject = common::FourCC("----");
inline constexpr common::FourCharCode kData = common::FourCC("data");
inline constexpr common::FourCharCode kErrorNumber = common::FourCC("errn");
// The four fields of an object specifier.
inline constexpr common::FourCharCode kDesiredClass = common::FourCC("want");
inline constexpr common::FourCharCode kContainer = common::FourCC("from");
inline constexpr common::FourCharCode kKeyForm = common::FourCC("form");
inline constexpr common::FourCharCode kKeyData = common::FourCC("seld");
}  // namespace event_keyword

namespace key_form {
inline constexpr common::FourCharCode kName = common::FourCC("name");
inline constexpr common::FourCharCode kProperty = common::FourCC("prop");
}  // namespace key_form

/// Whether descriptors of `type` hold other descriptors: lists, records and object specifiers.
[[nodiscard]] bool IsContainerType(common::FourCharCode type) noexcept;

class AEDescriptor {
 public:
  struct Item;  ///< a keyword and a descriptor

  /// The null descriptor.
  AEDescriptor() = default;
  /// `data` is dropped for the null descriptor and for containers, which begin empty.
  AEDescriptor(common::FourCharCode type, QByteArray data);

  [[nodiscard]] common::FourCharCode type() const { return type_; }
  [[nodiscard]] bool isNull() const { return type_ == descriptor_type::kNull; }
  /// Empty for a container.
  [[nodiscard]] const QByteArray& data() const { return data_; }
  /// The items of a container, in order. In a list their keywords mean nothing.
  [[nodiscard]] const QList<Item>& items() const& { return items_; }
  const QList<Item>& items() const&& = delete;
  /// An item of a list, counted from 1; null when there is none there, and always at 0.
  [[nodiscard]] const AEDescriptor* descriptorAtIndex(std::int32_t index) const&;
  const AEDescriptor* descriptorAtIndex(std::int32_t index) const&& = delete;
  /// Null when there is none. Looks through all fields.
  [[nodiscard]] const AEDescriptor* field(common::FourCharCode keyword) const&;
  const AEDescriptor* field(common::FourCharCode keyword) const&& = delete;

  /// Only for a list.
  void append(AEDescriptor item);
  /// Only for a record or object specifier; an earlier field of the same keyword is replaced.
  void setField(common::FourCharCode keyword, AEDescriptor value);

  friend bool operator==(const AEDescriptor& a, const AEDescriptor& b);

 private:
  common::FourCharCode type_ = descriptor_type::kNull;
  QByteArray data_;
  QList<Item> items_;
};

struct AEDescriptor::Item {
  common::FourCharCode keyword = descriptor_type::kWildcard;
  AEDescriptor value;
  friend bool operator==(const Item&, const Item&) = default;
};

/// `descriptor` is set when `status` is 0.
struct DescriptorResult {
  common::Status status = common::kNoError;
  AEDescriptor descriptor;
};

[[nodiscard]] AEDescriptor Int16Descriptor(std::int16_t value);
[[nodiscard]] AEDescriptor Int32Descriptor(std::int32_t value);
[[nodiscard]] AEDescriptor Float64Descriptor(double value);
/// `type` is one whose data are a code: type, enumerated, application signature.
[[nodiscard]] AEDescriptor CodeDescriptor(common::FourCharCode type, common::FourCharCode code);
[[nodiscard]] AEDescriptor UnicodeTextDescriptor(QStringView text);
[[nodiscard]] AEDescriptor ObjectSpecifier(common::FourCharCode desiredClass, AEDescriptor container,
                                           common::FourCharCode keyForm, AEDescriptor keyData);

// What a descriptor of exactly that type holds; nothing for another type or a wrong length.
[[nodiscard]] std::optional<std::int16_t> Int16Value(const AEDescriptor& descriptor);
[[nodiscard]] std::optional<std::int32_t> Int32Value(const AEDescriptor& descriptor);
[[nodiscard]] std::optional<double> Float64Value(const AEDescriptor& descriptor);
[[nodiscard]] std::optional<common::FourCharCode> CodeValue(const AEDescriptor& descriptor,
                                                            common::FourCharCode type);
/// Never null; an odd last byte is dropped. Units that are no characters stay.
[[nodiscard]] std::optional<QString> UnicodeTextValue(const AEDescriptor& descriptor);

/// The same value as another type. Its own type and the wildcard give the descriptor itself. Where nothing is
/// lost, UTF-16, UTF-8 and plain text are turned into each other; so are the two integers, and so are record
/// and object specifier. Numbers and truth values become text, in English form. The null descriptor has no
/// value and stays itself. Everything else is -1700.
[[nodiscard]] DescriptorResult CoerceDescriptor(const AEDescriptor& descriptor, common::FourCharCode type);

/// Makes it the null descriptor. -50 for a null pointer.
[[nodiscard]] common::Status DisposeDescriptor(AEDescriptor* descriptor);

inline constexpr std::int16_t kAutoGenerateReturnID = -1;
inline constexpr std::int32_t kAnyTransactionID = 0;

/// One event, or the reply to one. A null event stands for "no reply".
class AppleEvent {
 public:
  AppleEvent() = default;
  AppleEvent(common::FourCharCode eventClass, common::FourCharCode eventID, AEDescriptor target,
             std::int16_t returnID = kAutoGenerateReturnID, std::int32_t transactionID = kAnyTransactionID);

  [[nodiscard]] bool isNull() const { return isNull_; }
  [[nodiscard]] common::FourCharCode eventClass() const { return eventClass_; }
  [[nodiscard]] common::FourCharCode eventID() const { return eventID_; }
  /// The address of the application that is to get the event.
  [[nodiscard]] const AEDescriptor& target() const { return target_; }
  [[nodiscard]] std::int16_t returnID() const { return returnID_; }
  void setReturnID(std::int16_t returnID) { returnID_ = returnID; }
  [[nodiscard]] std::int32_t transactionID() const { return transactionID_; }
  /// A record.
  [[nodiscard]] const AEDescriptor& parameters() const { return parameters_; }
  void setParameter(common::FourCharCode keyword, AEDescriptor value);
  /// The parameter coerced to `type`; -1701 when there is none.
  [[nodiscard]] DescriptorResult parameter(common::FourCharCode keyword, common::FourCharCode type) const;

 private:
  bool isNull_ = true;
  common::FourCharCode eventClass_ = 0;
  common::FourCharCode eventID_ = 0;
  AEDescriptor target_;
  std::int16_t returnID_ = kAutoGenerateReturnID;
  std::int32_t transactionID_ = kAnyTransactionID;
  AEDescriptor parameters_{descriptor_type::kRecord, {}};
};

}  // namespace quillforth::platform

namespace quillforth::platform::finder {

// The codes of the events that read and write comments, for the senders of such events and the application
// that answers.
//
// 'core'/'getd' and 'core'/'setd' go to the application 'MACS'. Their direct object is the property 'comt' of
// an item, and the item is named by its HFS-style path:
//
//   obj { form 'prop', want type 'prop', seld type 'comt', from
//         obj { form 'name', want type 'file' or 'cobj', seld utxt path, from null } }
//
// A folder is a 'cobj' and its path ends in ":"; everything else is a 'file'. 'setd' carries the new comment
// as parameter 'data', a 'utxt', and an empty one clears it; the reply to 'getd' has the comment as direct
// object.

inline constexpr common::FourCharCode kSignature = common::FourCC("MACS");
inline constexpr common::FourCharCode kCoreSuite = common::FourCC("core");
inline constexpr common::FourCharCode kGetData = common::FourCC("getd");
inline constexpr common::FourCharCode kSetData = common::FourCC("setd");
inline constexpr common::FourCharCode kPropertyClass = common::FourCC("prop");
inline constexpr common::FourCharCode kCommentProperty = common::FourCC("comt");
inline constexpr common::FourCharCode kFileClass = common::FourCC("file");
inline constexpr common::FourCharCode kItemClass = common::FourCC("cobj");

}  // namespace quillforth::platform::finder

// SPDX-License-Identifier: MIT

#include "linux/files/LinuxFinder.h"

#include <sys/stat.h>

#include <string>

#include "appleevents/AppleEvents.h"
#include "appleevents/HFSPath.h"
#include "linux/files/ExtendedAttributes.h"

namespace quillforth::platform {

namespace {

namespace keyword = event_keyword;
namespace type = descriptor_type;
using common::FourCharCode;
using common::Status;

constexpr const char* kCommentAttribute = "user.xdg.comment";

bool HoldsCode(const AEDescriptor& specifier, FourCharCode field, FourCharCode fieldType, FourCharCode code) {
  const AEDescriptor* value = specifier.field(field);
  return value != nullptr && CodeValue(*value, fieldType) == code;
}

// The item whose comment `property` is; null when it is something else.
const AEDescriptor* ItemOfComment(const AEDescriptor& property) {
  const bool isComment = HoldsCode(property, keyword::kDesiredClass, type::kType, finder::kPropertyClass) &&
                         HoldsCode(property, keyword::kKeyForm, type::kEnumerated, key_form::kProperty) &&
                         HoldsCode(property, keyword::kKeyData, type::kType, finder::kCommentProperty);
  const AEDescriptor* item = isComment ? property.field(keyword::kContainer) : nullptr;
  return item != nullptr && item->type() == type::kObjectSpecifier ? item : nullptr;
}

// The file or folder that a specifier names; nothing when it names none.
std::optional<HFSPathTarget> TargetOfItem(const AEDescriptor& item) {
  const AEDescriptor* container = item.field(keyword::kContainer);
  const AEDescriptor* name = item.field(keyword::kKeyData);
  const bool isFile = HoldsCode(item, keyword::kDesiredClass, type::kType, finder::kFileClass);
  if (!isFile && !HoldsCode(item, keyword::kDesiredClass, type::kType, finder::kItemClass))
    return std::nullopt;
  if (!HoldsCode(item, keyword::kKeyForm, type::kEnumerated, key_form::kName)) return std::nullopt;
  if (container == nullptr || !container->isNull() || name == nullptr) return std::nullopt;
  const std::optional<QString> path = UnicodeTextValue(*name);
  std::optional<HFSPathTarget> target = path ? TargetOfHFSPath(*path) : std::nullopt;
  return target && isFile && target->isDirectory ? std::nullopt : target;
}

struct PathResult {
  Status status = common::kNoError;
  std::string path;
};

// The path of the item whose comment the event is about. A folder's path has a ":" at its end, a file's none.
PathResult PathOfEvent(const AppleEvent& event) {
  const DescriptorResult object = event.parameter(keyword::kDirectObject, type::kObjectSpecifier);
  if (object.status != common::kNoError) return {object.status, {}};
  const AEDescriptor* item = ItemOfComment(object.descriptor);
  if (item == nullptr) return {common::kAENoSuchObject, {}};
  const std::optional<HFSPathTarget> target = TargetOfItem(*item);
  if (!target) return {common::kAENoSuchObject, {}};
  struct stat status {};
  const bool exists = ::lstat(target->path.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode) != target->isDirectory) return {common::kAENoSuchObject, {}};
  return {common::kNoError, target->path};
}

Status GetComment(const AppleEvent& event, AppleEvent& reply) {
  const PathResult item = PathOfEvent(event);
  if (item.status != common::kNoError) return item.status;
  std::string comment;
  const Status status = ReadAttribute(item.path, kCommentAttribute, comment);
  if (status != common::kNoError) return status;
  reply.setParameter(keyword::kDirectObject, UnicodeTextDescriptor(LosslessText(comment)));
  return common::kNoError;
}

Status SetComment(const AppleEvent& event, AppleEvent& /*reply*/) {
  const PathResult item = PathOfEvent(event);
  if (item.status != common::kNoError) return item.status;
  const DescriptorResult text = event.parameter(keyword::kData, type::kUnicodeText);
  if (text.status != common::kNoError) return text.status;
  const std::optional<QString> comment = UnicodeTextValue(text.descriptor);
  const std::optional<std::string> bytes = comment ? BytesOfLosslessText(*comment) : std::nullopt;
  if (!bytes) return common::kAECoercionFailed;
  return WriteAttribute(item.path, kCommentAttribute, *bytes);
}

}  // namespace

LinuxFinder::LinuxFinder(AppleEventManager& events) : events_(events) {
  dispatcher_.installHandler(finder::kCoreSuite, finder::kGetData, GetComment);
  dispatcher_.installHandler(finder::kCoreSuite, finder::kSetData, SetComment);
  events_.registerTarget(finder::kSignature, dispatcher_);
}

LinuxFinder::~LinuxFinder() {
  events_.unregisterTarget(finder::kSignature);
}

}  // namespace quillforth::platform

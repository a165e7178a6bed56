// SPDX-License-Identifier: MIT

#include "classify/RunScript.h"

namespace quillforth::classify {

namespace {

std::optional<QString> StringValue(const platform::AEDescriptor& descriptor) {
  return UnicodeTextValue(CoerceDescriptor(descriptor, platform::descriptor_type::kUnicodeText).descriptor);
}

}  // namespace

std::optional<QString> runScript(const QString& source, platform::ScriptHost& host) {
  const std::optional<platform::AEDescriptor> result = host.compileAndRun(source);
  if (!result) return std::nullopt;
  if (result->type() != platform::descriptor_type::kList) return StringValue(*result);
  const platform::AEDescriptor* item = result->items().empty() ? nullptr : result->descriptorAtIndex(0);
  return item == nullptr ? std::nullopt : StringValue(*item);
}

}  // namespace quillforth::classify

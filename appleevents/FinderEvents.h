// SPDX-License-Identifier: MIT
//
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
#pragma once

#include "common/FourCharCode.h"

namespace quillforth::platform::finder {

inline constexpr common::FourCharCode kSignature = common::FourCC("MACS");
inline constexpr common::FourCharCode kCoreSuite = common::FourCC("core");
inline constexpr common::FourCharCode kGetData = common::FourCC("getd");
inline constexpr common::FourCharCode kSetData = common::FourCC("setd");
inline constexpr common::FourCharCode kPropertyClass = common::FourCC("prop");
inline constexpr common::FourCharCode kCommentProperty = common::FourCC("comt");
inline constexpr common::FourCharCode kFileClass = common::FourCC("file");
inline constexpr common::FourCharCode kItemClass = common::FourCC("cobj");

}  // namespace quillforth::platform::finder

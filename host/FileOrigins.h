// SPDX-License-Identifier: MIT
//
// Finds out where the files below a folder came from, by what is noted on them. Any thread.
#pragma once

#include <functional>
#include <string>

namespace quillforth::host {

/// Calls `take` for each file below `folder`, however deep, that says where it came from: the attribute
/// "user.xdg.origin.url" or else the comment. Paths begin with `folder`. Hidden files and folders are passed
/// over, links are not followed, and what cannot be read is left out. `shouldStop` is asked before each item;
/// once it is true, that was all.
void ForEachOrigin(const std::string& folder,
                   const std::function<void(const std::string& path, const std::string& origin)>& take,
                   const std::function<bool()>& shouldStop);

}  // namespace quillforth::host

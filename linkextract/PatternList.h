// SPDX-License-Identifier: MIT
//
// The texts between which a page's links stand.
//
// The order counts: the matches of one pair are cut out before the next pair is searched. So a quoted value
// is gone before an unquoted pair can find its attribute, and a value that ends at ">" is preferred to one
// that ends at a blank. "option value=" is switched off, and "SRC=" up to a blank stands here twice; both
// on purpose.
#pragma once

#include <array>
#include <string_view>

namespace quillforth::linkextract {

/// Both texts match without regard to ASCII letter case.
struct PatternPair {
  std::string_view begin;
  std::string_view end;
  bool enabled = true;
};

inline constexpr std::array<PatternPair, 15> kPatternList{{
    {"HREF=\"", "\""},
    {"SRC=\"", "\""},
    {"HREF='", "'"},
    {"SRC='", "'"},
    {"SRC=", " "},
    {"background=\"", "\""},
    {"background='", "'"},
    {"option value=\"", "\"", false},
    {"option value='", "'", false},
    {"HREF=", ">"},
    {"SRC=", ">"},
    {"background=", ">"},
    {"HREF=", " "},
    {"SRC=", " "},
    {"background=", " "},
}};

}  // namespace quillforth::linkextract

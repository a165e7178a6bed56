// SPDX-License-Identifier: MIT
//
// The commands of quillforth-cli and their options: the one table that the parser, the pages of help, the
// option sections of the manual page and the completions of the shells are made of.
//
// An option is a row in Options.cpp. Pure data; no service is needed.
#pragma once

#include <span>

#include "common/OptionTable.h"

namespace quillforth::terminal {

using common::CommandDescription;
using common::Completes;
using common::Option;

/// The program's own first, then the commands in the order of the help.
[[nodiscard]] std::span<const CommandDescription> Commands();

}  // namespace quillforth::terminal

# SPDX-License-Identifier: MIT
#
# A toolchain file: clang in the version of Debian 12, of Debian 13, or else the one that is there.
find_program(CMAKE_CXX_COMPILER NAMES clang++-14 clang++-19 clang++ REQUIRED)

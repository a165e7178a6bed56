# SPDX-License-Identifier: MIT
#
# One set of compiler flags for every target, and `quillforth_room` for the folders that are libraries.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                    -Wformat=2 -Wundef)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict)  # false alarms in assignments to std::string (GCC bug 105651)
endif()
option(QUILLFORTH_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
if(QUILLFORTH_WARNINGS_AS_ERRORS)
  add_compile_options(-Werror)
endif()

set(CMAKE_SKIP_RPATH ON)  # libraries are where the system looks, and no folder's name is left in the programs
add_link_options(-Wl,--as-needed)  # a library that nothing is taken from is not loaded

add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH _FILE_OFFSET_BITS=64)

# "address", "thread" or empty. Undefined behaviour is always checked together with addresses.
set(QUILLFORTH_SANITIZER "" CACHE STRING "address, thread or empty")
if(QUILLFORTH_SANITIZER STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined,float-cast-overflow,float-divide-by-zero
                      -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(QUILLFORTH_SANITIZER STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
else()
  # What makes a mistake harder to use, in each build that may be shipped.
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  set(hardening -fstack-protector-strong -fstack-clash-protection)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i.86")
    list(APPEND hardening -fcf-protection)
  endif()
  if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")  # who builds may have chosen a level
    list(APPEND hardening -D_FORTIFY_SOURCE=3)
  endif()
  add_compile_options("$<$<NOT:$<CONFIG:Debug>>:${hardening}>")
  add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

# quillforth_room(NAME SOURCES... ): the static library of one folder, included as "folder/File.h".
function(quillforth_room name)
  add_library(quillforth_${name} STATIC ${ARGN})
  target_include_directories(quillforth_${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()

# SPDX-License-Identifier: MIT
#
# Makes HTML of a page of the manual: cmake -D PAGE= -D FOLDER= -D OUTPUT= -D LOWDOWN= -P manual.cmake
#
# PAGE is the page's path in FOLDER; a folder in it is the language, which is English otherwise.
set(language en)
set(style manual.css)
if(PAGE MATCHES "^(.*)/")
  set(language ${CMAKE_MATCH_1})
  set(style ../manual.css)
endif()
file(READ "${FOLDER}/${PAGE}" text)
string(REGEX MATCH "^# ([^\n]*)" heading "${text}")
set(title "${CMAKE_MATCH_1}")
string(REGEX REPLACE "\\.md([)#])" ".html\\1" text "${text}")
file(WRITE "${OUTPUT}.md" "${text}")
execute_process(
  COMMAND "${LOWDOWN}" -s -T html --out-no-smarty -M "title=${title}" -M css=${style} -o "${OUTPUT}" "${OUTPUT}.md"
  COMMAND_ERROR_IS_FATAL ANY)
file(READ "${OUTPUT}" html)
string(REPLACE "<html>" "<html lang=\"${language}\">" html "${html}")
file(WRITE "${OUTPUT}" "${html}")
file(REMOVE "${OUTPUT}.md")

// SPDX-License-Identifier: MIT
//
// Reads the tables of cases in tests/data: a row a line, cells between tabs, "#" begins a comment line.
//
// Escapes in cells: \r \n \t \0 \\ \xHH, and \*COUNT; for the next character, or \xHH, COUNT times.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "tests/support/RawServer.h"

namespace quillforth::tests {

inline std::string Unescaped(const std::string& cell) {
  std::string text;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    const char kind = cell[i] == '\\' && i + 1 < cell.size() ? cell[++i] : ' ';
    constexpr std::string_view kNames = "rnt0\\";
    if (const std::size_t named = kNames.find(kind); named != std::string_view::npos) {
      text += std::string_view("\r\n\t\0\\", 5)[named];
    } else if (kind == 'x') {
      text += static_cast<char>(std::strtol(cell.substr(i + 1, 2).c_str(), nullptr, 16));
      i += 2;
    } else if (kind == '*') {
      const std::size_t end = cell.find(';', i);
      const std::size_t last = cell.compare(end + 1, 2, "\\x") == 0 ? end + 4 : end + 1;
      const std::string repeated = Unescaped(cell.substr(end + 1, last - end));
      text.append(std::strtoul(cell.c_str() + i + 1, nullptr, 10), repeated.at(0));
      i = last;
    } else {
      text += cell[i];
    }
  }
  return text;
}

/// The cells of a line; none for a comment.
inline std::vector<std::string> CellsOf(const std::string& line) {
  std::vector<std::string> cells;
  if (line.empty() || line[0] == '#') return cells;
  for (std::size_t start = 0; start <= line.size();) {
    const std::size_t end = std::min(line.find('\t', start), line.size());
    cells.push_back(Unescaped(line.substr(start, end - start)));
    start = end + 1;
  }
  return cells;
}

/// The rows of the table in `file`, each with `columns` cells.
inline std::vector<std::vector<std::string>> ReadCases(const std::string& file, std::size_t columns) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream input(file);
  for (std::string line; std::getline(input, line);) {
    std::vector<std::string> row = CellsOf(line);
    if (row.empty()) continue;
    EXPECT_EQ(row.size(), columns) << line;
    row.resize(columns);
    rows.push_back(std::move(row));
  }
  EXPECT_FALSE(rows.empty()) << file;
  return rows;
}

/// Sends the second cell of the row whose first cell is the requested path, then closes.
inline RawServer::Handler AnswerFrom(const std::vector<std::vector<std::string>>& rows) {
  std::map<std::string, std::string> replies;
  for (const auto& row : rows) replies[row[0]] = row[1];
  return Serving(std::move(replies), RawServer::After::close);
}

}  // namespace quillforth::tests

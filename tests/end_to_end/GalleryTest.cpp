// SPDX-License-Identifier: MIT
//
// The main job at its real size: a page of 2,000 files.

#include <random>

#include "tests/end_to_end/EndToEnd.h"

namespace quillforth::tests {
namespace {

using Gallery = EndToEnd;

TEST_F(Gallery, TwoThousandFilesArriveInOrderAndUnchanged) {
  std::mt19937 random(2);
  std::map<std::string, std::string> contents, replies;
  std::vector<std::string> names;
  std::string page;
  for (int i = 0; i < 2000; ++i) {
    const std::string name = names.emplace_back("image-" + std::to_string(i) + ".jpg");
    std::string& bytes = contents[name] = std::string(random() % (i % 100 == 0 ? 200000 : 4096), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    replies["/files/" + name] = HttpReply("200 OK", bytes);
    page += i % 2 == 0 ? "<a href=\"files/" + name + "\">" : "<img src='/files/" + name + "'>";
  }
  replies["/"] = HtmlReply(page);
  const RawServer server(Serving(replies));
  const Outcome outcome = get({"--set", "overwriteFilesBySameName=yes", server.url("/")});
  EXPECT_EQ(outcome.exitStatus, 0);
  EXPECT_EQ(outcome.errors, "");
  std::string expected;
  for (const std::string& name : names)
    expected.append("done ")
        .append(server.url("/files/"))
        .append(name)
        .append(" -> ")
        .append(inFolder(name)) += '\n';
  EXPECT_TRUE(outcome.output == expected) << outcome.output.substr(0, 2000);
  EXPECT_TRUE(files() == contents);
}

}  // namespace
}  // namespace quillforth::tests

// SPDX-License-Identifier: MIT
//
// Sorting a folder: by `get`, and by the command `aggregate`.

#include <sys/xattr.h>

#include "tests/end_to_end/EndToEnd.h"
#include "tests/fileops/FolderTree.h"

namespace quillforth::tests {
namespace {

class Aggregate : public EndToEnd {
 protected:
  void make(const Lines& lines) const {
    for (const std::string& line : lines) MakeItem(folder(), line);
  }
  /// Without a terminal, whatever the tests themselves run on.
  [[nodiscard]] Outcome aggregate(std::initializer_list<std::string> options) const {
    Program::Setup detached = setup({"aggregate", folder()});
    detached.arguments.insert(detached.arguments.end(), options);
    detached.wrapper = {"setsid", "-w"};
    return Program(detached).wait();
  }
};

TEST_F(Aggregate, ADryRunTellsTheMovesAndTheRealOneMakesThem) {
  const Lines before = {"a.pdf", "b\t.txt", "b/", "c.in", "d.e.f/", "in -> .", "pdf/a.pdf"};
  const std::string reason =
      "quillforth-cli: c.in stays: its subfolder is there as a file or a link\n"
      "quillforth-cli: not everything can be moved; items that stay: 1\n";
  make(before);
  const std::string refused = "quillforth-cli: The file \"" + inFolder("c.in") +
                              "\" could not be moved to \"" + inFolder("in") +
                              "\". A file by the same name may exists there already.\n" + reason;
  Outcome outcome = aggregate({"--dry-run"});
  EXPECT_EQ(outcome.exitStatus, 1);
  EXPECT_EQ(outcome.errors, reason);
  std::istringstream output(outcome.output);
  std::set<std::string> moves;
  for (std::string line; std::getline(output, line);) moves.insert(WithoutUUIDs(line));
  EXPECT_EQ(moves, (std::set<std::string>{"a.pdf\tpdf/a - UUID.pdf", "b\\x09.txt\ttxt/b\\x09.txt",
                                          "d.e.f\tf/d.e.f"}));
  EXPECT_EQ(TreeOf(folder()), before);

  outcome = aggregate({});
  EXPECT_EQ(outcome.exitStatus, 2) << "nobody can be asked";
  EXPECT_EQ(TreeOf(folder()), before);
  outcome = aggregate({"--yes"});
  EXPECT_EQ(outcome.exitStatus, 1);
  EXPECT_EQ(outcome.output + outcome.errors, refused);
  EXPECT_EQ(TreeOf(folder()), (Lines{"b/", "c.in", "f/d.e.f/", "in -> .", "pdf/a - UUID.pdf < a.pdf",
                                     "pdf/a.pdf", "txt/b\t.txt < b\t.txt"}));
}

TEST_F(Aggregate, AsksOnTheTerminalAndTakesOnlyAYes) {
  make({"a.pdf"});
  for (const auto& [answer, status] : {std::pair{"no\n", 1}, {"\n", 1}, {"\x04", 1}, {"OK\n", 0}}) {
    EXPECT_TRUE(std::filesystem::exists(inFolder("a.pdf")));
    Program program(setup({"aggregate", folder()}, 80));
    EXPECT_TRUE(program.waitForOutput("Are you sure you want to aggregate the files in \"" + folder() +
                                      "\"?\r\nThis process can not be undone.\r\nOK or Cancel? "));
    program.type(answer);
    EXPECT_EQ(program.wait().exitStatus, status) << answer;
  }
  EXPECT_TRUE(std::filesystem::exists(inFolder("pdf/a.pdf")));
}

TEST_F(Aggregate, GetSortsWhenTheQueueIsDoneIfThatIsSet) {
  const RawServer server(
      Serving({{"/a.jpg", HttpReply("200 OK", "a.jpg")}, {"/b.zip", HttpReply("200 OK", "b.zip")}}));
  EXPECT_EQ(get({"--set", "aggregateFiles=yes", server.url("/a.jpg"), server.url("/b.zip")}).exitStatus, 0);
  EXPECT_EQ(TreeOf(folder()), (Lines{"jpg/a.jpg < a.jpg", "zip/b.zip < b.zip"}));
  std::string comment(100, '\0');
  const ssize_t length =
      ::getxattr(inFolder("zip/b.zip").c_str(), "user.xdg.comment", comment.data(), comment.size());
  EXPECT_TRUE(length < 0 || comment.c_str() == server.url("/b.zip")) << "moved with its comment";
}

}  // namespace
}  // namespace quillforth::tests

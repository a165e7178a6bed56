// SPDX-License-Identifier: MIT
//
// Whole runs of `get` without a terminal: every URL has its outcome, and the folder holds what the lines say.

#include <QJsonDocument>
#include <QJsonObject>

#include "tests/end_to_end/EndToEnd.h"
#include "tests/support/RawServer.h"

namespace quillforth::tests {
namespace {

std::multiset<std::string> Lines(const std::string& text) {
  std::multiset<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.insert(line);
  return lines;
}

class Get : public EndToEnd {
 protected:
  Get() {
    server_.serve("/g/index.html",
                  "<a href=\"a.jpg\"><a href=\"missing.jpg\"><a href=\"bad url/\"><a href=\"b.zip\">",
                  "text/html");
    server_.serve("/dir/", "<a href=c.jpg>", "text/html");
    for (const char* path : {"/g/a.jpg", "/g/b.zip", "/dir/c.jpg", "/d.zip", "/e.jpg"}) {
      server_.serve(path, std::string("bytes of ") + path);
    }
    server_.start();
  }
  [[nodiscard]] std::string done(const std::string& path, const std::string& name) const {
    return "done " + server_.url(path) + " -> " + inFolder(name);
  }

  HonestServer server_;
};

TEST_F(Get, EveryURLOfAMixedRunHasItsOutcome) {
  std::string withCredentials = server_.url("/e.jpg");
  withCredentials.insert(7, "me:secret@");
  const std::vector<std::string> arguments =
      getArguments({server_.url("/g/index.html"), server_.url("/none.html"), "not a url",
                    server_.url("/dir/"), server_.url("/d.zip"), withCredentials});
  const Outcome outcome = run(arguments);
  EXPECT_EQ(outcome.exitStatus, 1);
  std::multiset<std::string> lines = Lines(outcome.output);
  const std::string missing = "failed " + server_.url("/g/missing.jpg") + ": ";
  const auto failure = lines.lower_bound(missing);
  ASSERT_TRUE(failure != lines.end() && failure->starts_with(missing) &&
              failure->find("404") != std::string::npos)
      << outcome.output;
  lines.erase(failure);
  const std::multiset<std::string> expected = {
      done("/g/a.jpg", "a.jpg"),
      done("/g/b.zip", "b.zip"),
      done("/dir/c.jpg", "c.jpg"),
      done("/d.zip", "d.zip"),
      done("/e.jpg", "e.jpg"),
      "failed " + server_.url("/g/bad url/") + ": This is not a valid URL.",
      "failed " + server_.url("/none.html") + ": The page could not be loaded.",
      "failed not a url: This is not a valid URL.",
  };
  EXPECT_EQ(lines, expected);
  const std::map<std::string, std::string> contents = {{"a.jpg", "bytes of /g/a.jpg"},
                                                       {"b.zip", "bytes of /g/b.zip"},
                                                       {"c.jpg", "bytes of /dir/c.jpg"},
                                                       {"d.zip", "bytes of /d.zip"},
                                                       {"e.jpg", "bytes of /e.jpg"}};
  EXPECT_EQ(files(), contents);
  EXPECT_EQ((outcome.output + outcome.errors).find("secret"), std::string::npos);
}

TEST_F(Get, JsonTellsTheSameAnObjectALine) {
  std::vector<std::string> arguments = getArguments({"--json", server_.url("/g/index.html")});
  const Outcome outcome = run(arguments);
  std::map<std::string, int> events;
  QJsonObject last;
  for (const QByteArray& line : QByteArray::fromStdString(outcome.output).trimmed().split('\n')) {
    QJsonParseError error;
    last = QJsonDocument::fromJson(line, &error).object();
    ASSERT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
    const std::string event = last[QStringLiteral("event")].toString().toStdString();
    ++events[event];
    EXPECT_TRUE(event != "page" || last[QStringLiteral("links")].toInt() == 4) << line.toStdString();
    EXPECT_TRUE(event != "done" || last[QStringLiteral("bytes")].toInt() == 17) << line.toStdString();
  }
  const std::map<std::string, int> expected = {
      {"page", 1}, {"begin", 3}, {"done", 2}, {"failed", 2}, {"end", 1}};
  events.erase("progress");
  EXPECT_EQ(events, expected) << outcome.output;
  EXPECT_EQ(last[QStringLiteral("status")].toInt(), 1);
  EXPECT_EQ(last[QStringLiteral("failed")].toInt(), 2);
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Get, ALongRunOfInvalidEntriesIsPassedOver) {
  std::string page;
  for (int i = 0; i < 3000; ++i) page += "<a href=\"bad " + std::to_string(i) + "/\">";
  server_.serve("/long.html", page + "<a href=\"/d.zip\">", "text/html");
  const Outcome outcome = run(getArguments({server_.url("/long.html")}));
  EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 3001);
  EXPECT_EQ(outcome.exitStatus, 1);
  EXPECT_EQ(files().count("d.zip"), 1U);
}

TEST_F(Get, OptionsReplaceSettingsForOneRunOnly) {
  const std::string url = server_.url("/d.zip");
  EXPECT_EQ(run(getArguments({url})).exitStatus, 0);
  EXPECT_EQ(run(getArguments({url})).output, "done " + url + " -> " + inFolder("d-1.zip") + "\n");
  EXPECT_EQ(run(getArguments({"--set", "overwriteFilesBySameName=yes", url})).output,
            done("/d.zip", "d.zip") + "\n");
  EXPECT_EQ(files().size(), 2U);
  EXPECT_EQ(run({"settings", "overwriteFilesBySameName"}).output, "no\n");
  // The kind that was given counts, and nobody asks the server.
  const Outcome asFile = run(getArguments({"--file", server_.url("/g/index.html")}));
  EXPECT_EQ(asFile.output, done("/g/index.html", "index.html") + "\n");
  const Outcome asPage = run(getArguments({"--page", server_.url("/d.zip")}));
  EXPECT_EQ(asPage.output, "");
  EXPECT_EQ(asPage.errors, "quillforth-cli: no links on " + server_.url("/d.zip") + "\n");
  EXPECT_EQ(asPage.exitStatus, 0);
  // A folder by its setting, for this run and for all.
  const std::string other = (root_ / "other").string();
  std::filesystem::create_directories(other);
  const std::string line = "done " + url + " -> " + other + "/d";
  EXPECT_EQ(run({"get", "--local", "--set", "DestinationDirectory=" + other, url}).output, line + ".zip\n");
  EXPECT_EQ(run({"settings", "DestinationDirectory", other}).exitStatus, 0);
  EXPECT_EQ(run({"get", "--local", url}).output, line + "-1.zip\n");
  // Nobody there to ask for a folder.
  EXPECT_EQ(run({"settings", "alwaysPromptForOutputLocation", "yes"}).exitStatus, 0);
  const Outcome unasked = run({"get", "--local", url});
  EXPECT_TRUE(unasked.output.starts_with("failed " + url + ": ")) << unasked.output;
  EXPECT_EQ(unasked.exitStatus, 1);
  EXPECT_EQ(run(getArguments({url})).exitStatus, 0);
}

TEST_F(Get, WithoutAConnectionTheRunEndsWithTheAlertsText) {
  Program::Setup unconnected =
      setup({"get", "--to", folder(), "--file", "http://10.0.0.1/a", "http://10.0.0.1/b"});
  unconnected.wrapper = {"unshare", "-rn"};
  if (std::system("unshare -rn true 2>/dev/null") != 0) GTEST_SKIP() << "no network namespaces here";
  const Outcome outcome = Program(unconnected).wait();
  EXPECT_EQ(outcome.errors,
            "quillforth-cli: You are not connected to the Internet.\n"
            "quillforth-cli: 2 of the URLs not fetched\n");
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.exitStatus, 1);
}

TEST_F(Get, ASheetIsAMessageAndAnUnansweredChallengeAFailure) {
  server_.server().Get("/locked.zip", [](const httplib::Request&, httplib::Response& response) {
    response.status = 401;
    response.set_header("WWW-Authenticate", "Basic realm=\"Gallery\"");
  });
  const std::string url = server_.url("/locked.zip");
  const Outcome outcome = run(getArguments({"--set", "showAlertsWhenErrorsOccur=yes", url}));
  EXPECT_TRUE(outcome.output.starts_with("failed " + url + ": ")) << outcome.output;
  EXPECT_TRUE(outcome.errors.starts_with("quillforth-cli: Download Failed: ")) << outcome.errors;
  EXPECT_TRUE(files().empty());
}

}  // namespace
}  // namespace quillforth::tests

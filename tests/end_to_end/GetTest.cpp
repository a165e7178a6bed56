// SPDX-License-Identifier: MIT
//
// Whole runs of `get` without a terminal: every URL has its outcome, and the folder holds what the lines say.

#include <QJsonDocument>
#include <QJsonObject>

#include "tests/end_to_end/EndToEnd.h"

namespace quillforth::tests {
namespace {

std::string LongPage() {
  std::string page;
  for (int i = 0; i < 3000; ++i) page += "<a href=\"bad " + std::to_string(i) + "/\">";
  return page + "<a href=\"/d.zip\">";
}

class Get : public EndToEnd {
 protected:
  [[nodiscard]] std::string done(const std::string& path, const std::string& name) const {
    return "done " + server_.url(path) + " -> " + inFolder(name) + '\n';
  }

  RawServer server_{
      Serving({{"/g/index.html", HtmlReply("<a href=\"a.jpg\"><a href=\"missing.jpg\"><a href=\"bad url/\">"
                                           "<a href=\"b.zip\">")},
               {"/dir/", HtmlReply("<a href=c.jpg>")},
               {"/long.html", HtmlReply(LongPage())},
               {"/g/a.jpg", HttpReply("200 OK", "a")},
               {"/g/b.zip", HttpReply("200 OK", "b")},
               {"/dir/c.jpg", HttpReply("200 OK", "c")},
               {"/d.zip", HttpReply("200 OK", "d")},
               {"/e.jpg", HttpReply("200 OK", "e")},
               {"/locked.zip", HttpReply("401 No", "", "WWW-Authenticate: Basic realm=r\r\n")}})};
};

TEST_F(Get, EveryURLOfAMixedRunHasItsOutcome) {
  std::string withCredentials = server_.url("/e.jpg");
  withCredentials.insert(7, "me:secret@");
  const Outcome outcome =
      get({server_.url("/g/index.html"), server_.url("/none.html"), "not a url", "mailto://me:secret@h/",
           server_.url("/dir/"), server_.url("/d.zip"), withCredentials});
  EXPECT_EQ(outcome.exitStatus, 2);
  EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find("URL\n", 50) + 4),
            "quillforth-cli: not a url: no http, https or ftp URL\n"
            "quillforth-cli: mailto://h/: no http, https or ftp URL\n");
  std::multiset<std::string> lines;
  std::istringstream stream(outcome.output);
  for (std::string line; std::getline(stream, line);) lines.insert(line + '\n');
  const std::multiset<std::string> expected = {
      done("/g/a.jpg", "a.jpg"),
      done("/g/b.zip", "b.zip"),
      done("/dir/c.jpg", "c.jpg"),
      done("/d.zip", "d.zip"),
      done("/e.jpg", "e.jpg"),
      "failed " + server_.url("/g/bad url/") + ": This is not a valid URL.\n",
      "failed " + server_.url("/g/missing.jpg") + ": The server answered 404 Not Found.\n",
      "failed " + server_.url("/none.html") + ": The server answered 404 Not Found.\n",
  };
  EXPECT_EQ(lines, expected);
  EXPECT_EQ(files(), (std::map<std::string, std::string>{
                         {"a.jpg", "a"}, {"b.zip", "b"}, {"c.jpg", "c"}, {"d.zip", "d"}, {"e.jpg", "e"}}));
  EXPECT_EQ((outcome.output + outcome.errors).find("secret"), std::string::npos);

  EXPECT_EQ(run({"get", "--to", inRoot("new"), "mailto:a"}).exitStatus, 2);
  EXPECT_FALSE(std::filesystem::exists(inRoot("new")));
}

TEST_F(Get, AnAddressOfIPv6IsAHostEverywhere) {
  std::optional<RawServer> server;
  try {
    server.emplace(Serving({{"/g/", HtmlReply("<a href=\"a.jpg\"><a href=\"/move.zip\">")},
                            {"/g/a.jpg", HttpReply("200 OK", "a")},
                            {"/move.zip", HttpReply("302 Found", "", "Location: /?b\r\n")},
                            {"/?b", HttpReply("200 OK", "b")}}),
                   RawServer::Greeting::client, "[::1]");
  } catch (const std::runtime_error&) {
    GTEST_SKIP() << "no IPv6 here";
  }
  std::string page = server->url("/g/");
  const Outcome outcome = get({page.insert(7, "me:secret@")});
  EXPECT_EQ(outcome.output, "done " + server->url("/g/a.jpg") + " -> " + inFolder("a.jpg") + "\ndone " +
                                server->url("/move.zip") + " -> " + inFolder("::1") + '\n');
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Get, JsonTellsTheSameAnObjectALine) {
  const Outcome outcome = get({"--json", server_.url("/g/index.html")});
  std::map<std::string, int> events;
  QJsonObject last;
  for (const QByteArray& line : QByteArray::fromStdString(outcome.output).trimmed().split('\n')) {
    last = QJsonDocument::fromJson(line).object();
    const std::string event = last[QStringLiteral("event")].toString().toStdString();
    ++events[event];
    EXPECT_TRUE(event != "page" || last[QStringLiteral("links")].toInt() == 4) << line.toStdString();
    EXPECT_TRUE(event != "done" || last[QStringLiteral("bytes")].toInt() == 1) << line.toStdString();
  }
  events.erase("progress");
  EXPECT_EQ(events,
            (std::map<std::string, int>{{"page", 1}, {"begin", 3}, {"done", 2}, {"failed", 2}, {"end", 1}}));
  EXPECT_EQ(last[QStringLiteral("status")].toInt(), 1);
  EXPECT_EQ(last[QStringLiteral("failed")].toInt(), 2);
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Get, ALongRunOfInvalidEntriesIsPassedOver) {
  const Outcome outcome = get({server_.url("/long.html")});
  EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 3001);
  EXPECT_EQ(outcome.exitStatus, 1);
  EXPECT_EQ(files().count("d.zip"), 1U);
}

TEST_F(Get, OptionsReplaceSettingsForOneRunOnly) {
  const std::string url = server_.url("/d.zip");
  EXPECT_EQ(get({url}).output, done("/d.zip", "d.zip"));
  EXPECT_EQ(get({url}).output, done("/d.zip", "d-1.zip"));
  EXPECT_EQ(get({"--set", "overwriteFilesBySameName=yes", url}).output, done("/d.zip", "d.zip"));
  EXPECT_EQ(run({"settings", "overwriteFilesBySameName"}).output, "no\n");
  // The kind that was given counts, and nobody asks the server.
  EXPECT_EQ(get({"--file", server_.url("/g/index.html")}).output, done("/g/index.html", "index.html"));
  const Outcome asPage = get({"--page", url});
  EXPECT_EQ(asPage.output, "");
  EXPECT_EQ(asPage.errors, "quillforth-cli: no links on " + url + "\n");
  EXPECT_EQ(asPage.exitStatus, 0);
  // A folder by its setting, for this run and for all.
  const std::string other = inRoot("other");
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
  EXPECT_EQ(get({url}).exitStatus, 0);
}

TEST_F(Get, WithoutAConnectionTheRunEndsWithTheAlertsText) {
  Program::Setup unconnected =
      setup({"get", "--to", folder(), "--file", "http://10.0.0.1/a", "http://10.0.0.1/b"});
  unconnected.wrapper = {"unshare", "-rn"};
  if (std::system("unshare -rn true 2>/dev/null") != 0) GTEST_SKIP() << "no network namespaces here";
  const Outcome outcome = Program(unconnected).wait();
  EXPECT_EQ(outcome.errors,
            "quillforth-cli: You are not connected to the Internet. For servers in the local network, use "
            "--local.\n"
            "quillforth-cli: 2 of the URLs not fetched\n");
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.exitStatus, 1);
}

TEST_F(Get, ASheetIsAMessageAndAnUnansweredChallengeAFailure) {
  const std::string url = server_.url("/locked.zip");
  const Outcome outcome = get({"--set", "showAlertsWhenErrorsOccur=yes", url});
  EXPECT_TRUE(outcome.output.starts_with("failed " + url + ": ")) << outcome.output;
  EXPECT_TRUE(outcome.errors.starts_with("quillforth-cli: Download Failed: ")) << outcome.errors;
  EXPECT_TRUE(files().empty());
}

}  // namespace
}  // namespace quillforth::tests

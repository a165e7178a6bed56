// SPDX-License-Identifier: MIT
//
// The options of `get`, by what is printed, what is on disk and what the server is asked.

#include <sys/stat.h>

#include "tests/end_to_end/EndToEnd.h"

namespace quillforth::tests {
namespace {

class GetOptions : public EndToEnd {
 protected:
  // "{}" stands for the server, and "~" for the folder of the downloads.
  [[nodiscard]] std::string filled(std::string text) const {
    for (const auto& [mark, value] : {std::pair{std::string("{}"), server_.url("")}, {"~", folder()}}) {
      for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + value.size()))
        text.replace(at, mark.size(), value);
    }
    return text;
  }
  [[nodiscard]] Outcome getWith(std::vector<std::string> arguments, const std::string& input = {}) const {
    std::vector<std::string> all = getArguments({});
    for (const std::string& argument : arguments) all.push_back(filled(argument));
    return run(all, filled(input));
  }
  [[nodiscard]] static std::string contents(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path).rdbuf();
    return bytes.str();
  }
  [[nodiscard]] std::string fieldOfLast(const std::string& name) const {
    const std::string request = server_.requests().back();
    const std::size_t start = request.find("\r\n" + name + ": ");
    if (start == std::string::npos) return "none";
    return request.substr(start + name.size() + 4, request.find("\r\n", start + 2) - start - name.size() - 4);
  }

  std::atomic<int> flakyCount_ = 0;
  RawServer server_{[this](RawServer::Connection& connection, const std::string& request) {
    const std::string path = request.substr(4, request.find(' ', 4) - 4);
    std::string reply = HttpReply("200 OK", path,
                                  "Last-Modified: Tue, 15 Nov 1994 12:45:26 GMT\r\n"
                                  "Link: </a>, <http://h/?n=http://me:p/w@h/>\r\n");
    if (path == "/g/") reply = HtmlReply("<a href=a.jpg><a href=b.zip><a href=\"a.jpg#x\"><a href=sub/>");
    if (path == "/missing.zip") reply = HttpReply("404 No", "");
    if (path == "/page.php") reply = HtmlReply("");
    if (path == "/flaky.zip" && ++flakyCount_ < 3) reply = HttpReply("503 No", "", "Retry-After: 1\r\n");
    if (path == "/held.zip") {
      const std::size_t before = server_.requests().size();
      for (int i = 0; i < 40 && server_.requests().size() == before; ++i) (void)connection.waitForEnd(5);
      reply = HttpReply("200 OK", server_.requests().size() == before ? "alone" : "beside another");
    }
    connection.send(reply);
    return After::keepOpen;
  }};
  RawServer other_{
      Serving({{"/moved.zip", HttpReply("302 Found", "", "Location: " + server_.url("/m.zip") + "\r\n")}})};
};

TEST_F(GetOptions, PrintAndLeaveWhatTheyPromise) {
  const std::string kTooLong = std::string(200, '.') + "\u2026";
  const std::string kLeftOut = ": no list of URLs can hold this text, so it is left out of what is left\n";
  const struct {
    std::vector<std::string> arguments;
    std::string input, output, errors;
    int exitStatus = 0;
  } cases[] = {
      {{"-i", "-"}, "# none\r\n\r\n", "", ""},
      {{"--dry-run", "--unique", "--reject", "pages", "--page", "{}/g/"},
       "",
       "would fetch {}/g/a.jpg#x -> a.jpg (a guess)\nwould fetch {}/g/b.zip -> b.zip (a guess)\n",
       ""},
      {{"--page", "--match", "none", "{}/g/"},
       "",
       "",
       "quillforth-cli: none of the 4 links on {}/g/ is wanted\n"},
      {{"--page", "--accept", "zip,picture", "--no-match", "(.*)(.*)(.*)(.*)(.*)(.*)(.*)(.*)(.*)[A-Z]",
        "{}/g/", "--rest", "~.unjudged"},
       "",
       "failed {}/g/b.zip: A regular expression needs too much work on this URL.\n",
       "quillforth-cli: \"picture\" is neither a kind nor a known extension\n",
       1},
      {{"-i", "-", "--rest", "~.rest"},
       "{}/x.zip\r\n{}/missing.zip\nfile\t{}/p.html\tits reason\n",
       "done {}/x.zip -> ~/x.zip\nfailed {}/missing.zip: The server answered 404 Not Found.\n"
       "done {}/p.html -> ~/p.html\n",
       "",
       1},
      {{"--skip-existing", "{}/x.zip#again", "{}/\xe9.zip"},
       "",
       "skipped {}/x.zip#again -> ~/x.zip\ndone {}/%E9.zip -> ~/\u00e9.zip\n",
       ""},
      {{"--archive", "~.archive", "{}/y.zip"}, "", "done {}/y.zip -> ~/y.zip\n", ""},
      {{"--archive", "~.archive", "{}/y.zip"}, "", "skipped {}/y.zip -> ~.archive\n", ""},
      // What a list would make something else of is not in the rest.
      {{"-i", "-", "#a", "x:\n{}/no.zip", "page\tx:", "--rest", "~.refused"},
       "mailto:me@h\npage\tx:// y\n" + std::string(65537, '.'),
       "",
       "quillforth-cli: #a: no http, https or ftp URL\n"
       "quillforth-cli: x:\\x0a{}/no.zip: no http, https or ftp URL\n"
       "quillforth-cli: page\\x09x:: no http, https or ftp URL\n"
       "quillforth-cli: mailto:me@h: no http, https or ftp URL\n"
       "quillforth-cli: x:// y: no http, https or ftp URL\n"
       "quillforth-cli: " +
           kTooLong +
           ": longer than a line of a list may be\n"
           "quillforth-cli: #a" +
           kLeftOut + "quillforth-cli: x:\\x0a{}/no.zip" + kLeftOut +
           "quillforth-cli: page\\x09x:" + kLeftOut + "quillforth-cli: " + kTooLong + kLeftOut,
       2},
      // Each of two equal URLs has its own tries.
      {{"--retry", "1", "--set", "aggregateFiles=yes", "{}/flaky.zip", "{}/flaky.zip"},
       "",
       "retry {}/flaky.zip: The server answered 503 Service Unavailable.\n"
       "retry {}/flaky.zip: The server answered 503 Service Unavailable.\n"
       "done {}/flaky.zip -> ~/flaky.zip\ndone {}/flaky.zip -> ~/flaky-1.zip\n",
       ""},
      {{"--wait", "0.01", "{}/held.zip", "{}/sub/"},
       "",
       "done {}/held.zip -> ~/held.zip\ndone {}/sub/ -> ~/127.0.0.1\n",
       ""},
      {{"--quiet", "{}/page.php"},
       "",
       "",
       "quillforth-cli: {}/page.php: this looks like a page; use --page\n"},
      {{"--retry", "many", "{}/x.zip"},
       "",
       "",
       "quillforth-cli get: --retry: \"many\" is no number from 0 to 100\nTry 'quillforth-cli get --help'.\n",
       2},
  };
  for (const auto& expected : cases) {
    const Outcome outcome = getWith(expected.arguments, expected.input);
    const std::string told = outcome.output.substr(0, outcome.output.find("moved "));
    EXPECT_EQ(told, filled(expected.output)) << ::testing::PrintToString(expected.arguments);
    EXPECT_EQ(outcome.errors, filled(expected.errors));
    EXPECT_EQ(outcome.exitStatus, expected.exitStatus);
  }
  EXPECT_EQ(contents(folder() + ".rest"), filled("{}/missing.zip\n"));
  EXPECT_EQ(contents(folder() + ".refused"), "mailto:me@h\npage\tx:// y\n");
  EXPECT_EQ(contents(folder() + ".unjudged"), filled("{}/g/b.zip\n"));
  EXPECT_EQ(contents(folder() + ".archive"), filled("{}/y.zip\n"));
  EXPECT_EQ(contents(inFolder("zip/flaky.zip")), "/flaky.zip");
  EXPECT_EQ(contents(inFolder("held.zip")), "alone");
  struct stat status {};
  EXPECT_EQ(::stat((folder() + ".archive").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(GetOptions, RequestsCarryWhatTheUserGivesAndNobodyElseDoes) {
  std::ofstream(inRoot("cookies"))
      << "# Netscape HTTP Cookie File\n127.0.0.1\tFALSE\t/\tFALSE\t0\tsid\tabc\n";
  std::ofstream(inRoot("headers")) << "X-Key: secret\nCookie: mine=secret\n";
  const Outcome outcome =
      getWith({"-v", "--cookies", inRoot("cookies"), "--header", "@" + inRoot("headers"), "--user-agent",
               "UA", "--referer", "http://me:pw@h/p?q#f", "--remote-time", "{}/t.zip"});
  EXPECT_EQ(fieldOfLast("Cookie") + ' ' + fieldOfLast("X-Key") + ' ' + fieldOfLast("User-Agent") + ' ' +
                fieldOfLast("Referer"),
            "sid=abc; mine=secret secret UA http://h/p?q");
  EXPECT_NE(outcome.errors.find("> GET /t.zip HTTP/1.1\n"), std::string::npos) << outcome.errors;
  EXPECT_NE(outcome.errors.find("Link: </a>, <http://h/?n=http://h/>"), std::string::npos) << outcome.errors;
  for (const char* secret : {"abc", "secret", "pw"})
    EXPECT_EQ(outcome.errors.find(secret), std::string::npos) << outcome.errors;
  // A redirect to another port of the host.
  EXPECT_EQ(getWith({"--header", "@" + inRoot("headers"), other_.url("/moved.zip")}).exitStatus, 0);
  EXPECT_EQ(fieldOfLast("Cookie") + ' ' + fieldOfLast("X-Key"), "none none");
  struct stat status {};
  EXPECT_EQ(::stat(inFolder("t.zip").c_str(), &status), 0);
  EXPECT_EQ(status.st_mtime, 784903526);
  EXPECT_EQ(getWith({"--page", "--accept", "zip", "--referer", "page", "{}/g/"}).exitStatus, 0);
  EXPECT_EQ(fieldOfLast("Referer"), filled("{}/g/"));
}

}  // namespace
}  // namespace quillforth::tests

// SPDX-License-Identifier: MIT
//
// What the requests of one run know of each other, seen by a proxy that answers for all hosts.

#include "tests/end_to_end/EndToEnd.h"

namespace quillforth::tests {
namespace {

class Session : public EndToEnd {
 protected:
  Session() { environment_["http_proxy"] = proxy_.url(""); }

  // The values of a field, each with the URL that it was sent for, in the order of the requests.
  [[nodiscard]] std::vector<std::string> sent(const std::string& name) const {
    std::vector<std::string> values;
    for (const std::string& request : proxy_.requests()) {
      const std::size_t start = request.find("\r\n" + name + ": ");
      if (start == std::string::npos) continue;
      const std::size_t value = start + name.size() + 4;
      const std::size_t url = request.find("http://") + 7;
      values.push_back(request.substr(url, request.find(' ', url) - url) + ": " +
                       request.substr(value, request.find('\r', value) - value));
    }
    return values;
  }

  RawServer::Handler serving_ = Serving(
      {{"http://www.a.co.uk/",
        HttpReply("200 OK",
                  "<a href=/1.zip><a href=/none.zip><a href=/hop.zip><a href=http://files.a.co.uk/2.zip>"
                  "<a href=http://b.co.uk/3.zip><a href=/last.zip>",
                  "Content-Type: text/html\r\nSet-Cookie: own=1; HttpOnly\r\nSet-Cookie: wide=2; "
                  "Domain=a.co.uk\r\n"
                  "Set-Cookie: suffix=3; Domain=co.uk\r\nSet-Cookie: other=4; Domain=b.co.uk\r\n"
                  "Set-Cookie: safe=5; Secure\r\nSet-Cookie: deep=6; Path=/g\r\n")},
       {"http://www.a.co.uk/1.zip", HttpReply("200 OK", "1", "Set-Cookie: own=; Max-Age=0\r\n")},
       {"http://www.a.co.uk/none.zip", HttpReply("404 No", "", "Set-Cookie: missing=7\r\n")},
       {"http://www.a.co.uk/hop.zip", HttpReply("302 F", "", "Location: /on\r\nSet-Cookie: hop=8\r\n")},
       {"http://www.a.co.uk/on", HttpReply("302 F", "", "Location: /end\r\nSet-Cookie: hop=9\r\n")},
       {"http://www.a.co.uk/end", HttpReply("200 OK", "end")},
       {"http://files.a.co.uk/2.zip", HttpReply("200 OK", "2")},
       {"http://b.co.uk/3.zip", HttpReply("200 OK", "3")},
       {"http://old.test/", HttpReply("302 F", "", "Location: http://me:pw@new.test/g/?id=1#top\r\n")},
       {"http://new.test/g/?id=1", HttpReply("200 OK",
                                             "<a href=http://new.test/guarded.zip><a "
                                             "href=http://cdn.test/4.zip><a href=http://new.test/go.zip>",
                                             "Content-Type: text/html\r\nSet-Cookie: session=1; Path=/\r\n")},
       {"http://new.test/guarded.zip", HttpReply("200 OK", "guarded")},
       {"http://cdn.test/4.zip", HttpReply("200 OK", "4")},
       {"http://new.test/go.zip", HttpReply("302 F", "", "Location: http://cdn.test/go\r\n")},
       {"http://cdn.test/go", HttpReply("302 F", "", "Location: http://new.test/back\r\n")},
       {"http://new.test/back", HttpReply("200 OK", "back")}});
  // One file is only for those who come from its page, and show that they have seen it.
  RawServer proxy_{[this](RawServer::Connection& connection, const std::string& request) {
    const bool isGuarded = request.find("/guarded.zip") != std::string::npos;
    const bool isKnown = request.find("\r\nReferer: http://new.test/g/?id=1\r\n") != std::string::npos &&
                         request.find("\r\nCookie: session=1\r\n") != std::string::npos;
    if (!isGuarded || isKnown) return serving_(connection, request);
    connection.send(HttpReply("403 No", ""));
    return After::keepOpen;
  }};
};

TEST_F(Session, SharesTheCookiesOfPagesAndFilesAsABrowserDoes) {
  const Outcome outcome = get({"http://www.a.co.uk/"});
  EXPECT_EQ(files().size(), 4U) << outcome.output;
  EXPECT_EQ(sent("Cookie"),
            (std::vector<std::string>{
                "www.a.co.uk/1.zip: own=1; wide=2", "www.a.co.uk/none.zip: wide=2",
                "www.a.co.uk/hop.zip: missing=7; wide=2", "www.a.co.uk/on: missing=7; hop=8; wide=2",
                "www.a.co.uk/end: missing=7; hop=9; wide=2", "files.a.co.uk/2.zip: wide=2",
                "www.a.co.uk/last.zip: missing=7; hop=9; wide=2"}));
}

TEST_F(Session, HasNoCookiesWhereTheUserWantsNone) {
  EXPECT_EQ(get({"--no-cookies", "http://www.a.co.uk/"}).exitStatus, 1);
  EXPECT_EQ(proxy_.requests().size(), 10U);
  EXPECT_EQ(sent("Cookie"), std::vector<std::string>());
}

TEST_F(Session, TellsWhereAFileWasFoundOnlyIfTheUserWantsIt) {
  const std::string page = "http://us:er@old.test/#x";
  EXPECT_TRUE(get({"--page", page})
                  .output.starts_with("failed http://new.test/guarded.zip: The server answered 403 "
                                      "Forbidden.\ndone http://cdn.test/4.zip"));
  EXPECT_TRUE(get({"--page", "--no-cookies", "--set", "sendReferer=yes", page})
                  .output.starts_with("failed http://new.test/guarded.zip: "));
  const std::size_t before = sent("Referer").size();
  EXPECT_EQ(before, 5U);  // of the second run alone
  EXPECT_EQ(get({"--page", "--set", "sendReferer=yes", page}).exitStatus, 0);
  EXPECT_EQ(files()["guarded.zip"], "guarded");
  std::vector<std::string> told = sent("Referer");
  told.erase(told.begin(), told.begin() + static_cast<std::ptrdiff_t>(before));
  EXPECT_EQ(told, (std::vector<std::string>{
                      "new.test/guarded.zip: http://new.test/g/?id=1", "cdn.test/4.zip: http://new.test/",
                      "new.test/go.zip: http://new.test/g/?id=1", "cdn.test/go: http://new.test/",
                      "new.test/back: http://new.test/"}));
}

}  // namespace
}  // namespace quillforth::tests

// SPDX-License-Identifier: MIT

#include "bench/storm/StormServer.h"

#include <string>

#include "bench/storm/StormItem.h"

namespace quillforth::bench {

namespace {

using After = tests::RawServer::After;
using Connection = tests::RawServer::Connection;

constexpr int kPieces = 8;
// "user:word" in base64.
constexpr std::string_view kCredentials = "Authorization: Basic dXNlcjp3b3Jk\r\n";

std::string TypeLine(const StormItem& item) {
  return item.isPage ? "Content-Type: text/html\r\n" : "Content-Type: application/octet-stream\r\n";
}

After SendWhole(Connection& connection, const std::string& reply) {
  return connection.send(reply) ? After::keepOpen : After::close;
}

After SendPieces(Connection& connection, const std::string& reply, int milliseconds) {
  const std::size_t piece = reply.size() / kPieces + 1;
  for (std::size_t sent = 0; sent < reply.size(); sent += piece) {
    if (!connection.send(std::string_view(reply).substr(sent, piece))) return After::close;
    if (connection.waitForEnd(milliseconds / kPieces)) return After::close;
  }
  return After::keepOpen;
}

// The header announces all of the body, and half of that comes.
After SendHalf(Connection& connection, const std::string& reply, bool isReset) {
  const std::size_t head = reply.find("\r\n\r\n") + 4;
  connection.send(std::string_view(reply).substr(0, head + (reply.size() - head) / 2));
  if (isReset) connection.reset();
  return After::close;
}

After Answer(Connection& connection, const std::string& request, const StormItem& item, bool isSecondPlace,
             std::uint64_t seed) {
  const std::string type = TypeLine(item);
  const std::string body = BodyOf(item, seed);
  switch (item.fate) {
    case Fate::whole:
      return SendWhole(connection, tests::HttpReply("200 OK", body, type));
    case Fate::slow:
      if (connection.waitForEnd(item.milliseconds)) return After::close;
      return SendWhole(connection, tests::HttpReply("200 OK", body, type));
    case Fate::dripping:
      return SendPieces(connection, tests::HttpReply("200 OK", body, type), item.milliseconds);
    case Fate::unmeasured:
      connection.send("HTTP/1.1 200 OK\r\nConnection: close\r\n" + type + "\r\n" + body);
      return After::close;
    case Fate::redirected:
      if (isSecondPlace) return SendWhole(connection, tests::HttpReply("200 OK", body, type));
      return SendWhole(connection, tests::HttpReply("302 Found", "", "Location: " + item.path + "?to\r\n"));
    case Fate::renamed:
      return SendWhole(connection, tests::HttpReply("200 OK", body,
                                                    type + "Content-Disposition: attachment; filename=" +
                                                        SharedName(item, seed) + "\r\n"));
    case Fate::locked:
      if (request.find(kCredentials) != std::string::npos) {
        return SendWhole(connection, tests::HttpReply("200 OK", body, type));
      }
      return SendWhole(connection, tests::HttpReply("401 No", "", "WWW-Authenticate: Basic realm=\"r\"\r\n"));
    case Fate::missing:
      return SendWhole(connection, tests::HttpReply("404 No", "<p>Not here.", "Content-Type: text/html\r\n"));
    case Fate::cut:
    case Fate::reset:
      return SendHalf(connection, tests::HttpReply("200 OK", body, type), item.fate == Fate::reset);
    case Fate::held:
      break;
  }
  static_cast<void>(connection.waitForEnd(item.milliseconds));
  return After::close;
}

}  // namespace

tests::RawServer::Handler StormAnswers(std::uint64_t seed) {
  return [seed](Connection& connection, const std::string& request) {
    const std::size_t start = request.find(' ') + 1;
    const std::string path = request.substr(start, request.find(' ', start) - start);
    const StormItem item = ItemAt(path, seed);
    if (!request.starts_with("HEAD ")) {
      return Answer(connection, request, item, path.ends_with("?to"), seed);
    }
    if (connection.waitForEnd(item.milliseconds)) return After::close;
    return SendWhole(connection, "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n" + TypeLine(item) + "\r\n");
  };
}

}  // namespace quillforth::bench

// SPDX-License-Identifier: MIT
//
// Serves a folder of pages and files on loopback, for the sample of ./run.
//
//   gallery_server [--rate KIB_PER_SECOND] FOLDER
//
// Prints its origin, such as "http://127.0.0.1:40123", as its only line and serves until it is killed. In
// pages, the text
// {{ORIGIN}} becomes that origin, so that they can hold absolute links. A page in a folder named in
// `kLatin1Folders` is announced as ISO-8859-1. Files are sent no faster than the given rate, so that one can
// watch them arrive.

#include <httplib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 1> kLatin1Folders = {"/winter/"};
constexpr std::size_t kPiece = 8192;

struct Options {
  std::size_t bytesPerSecond = 0;  // 0: as fast as it goes
  fs::path folder;
};

std::optional<Options> ReadArguments(int argc, char** argv) {
  Options options;
  int next = 1;
  if (argc > 3 && std::string_view(argv[1]) == "--rate") {
    const long rate = std::strtol(argv[2], nullptr, 10);
    if (rate < 1 || rate > 1'000'000) return std::nullopt;
    options.bytesPerSecond = static_cast<std::size_t>(rate) * 1024;
    next = 3;
  }
  if (next + 1 != argc || !fs::is_directory(argv[next])) return std::nullopt;
  options.folder = fs::canonical(argv[next]);
  return options;
}

std::string ContentType(const std::string& path) {
  static const std::map<std::string, std::string, std::less<>> types = {
      {".gif", "image/gif"},     {".jpg", "image/jpeg"},      {".png", "image/png"},
      {".svg", "image/svg+xml"}, {".zip", "application/zip"}, {".txt", "text/plain; charset=utf-8"}};
  const std::string extension = fs::path(path).extension().string();
  if (extension == ".html") {
    const bool isLatin1 = std::any_of(kLatin1Folders.begin(), kLatin1Folders.end(),
                                      [&path](std::string_view folder) { return path.starts_with(folder); });
    return isLatin1 ? "text/html; charset=ISO-8859-1" : "text/html; charset=utf-8";
  }
  const auto found = types.find(extension);
  return found == types.end() ? "application/octet-stream" : found->second;
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

/// The file that a request path names; nothing for one that does not lie in the folder.
std::optional<std::string> ReadFile(const fs::path& folder, const std::string& path) {
  std::error_code error;
  const fs::path file = fs::canonical(folder / path.substr(1), error);
  if (error || !fs::is_regular_file(file)) return std::nullopt;
  if (!file.string().starts_with(folder.string() + '/')) return std::nullopt;
  std::ifstream stream(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

void Serve(const Options& options, const std::string& origin, const httplib::Request& request,
           httplib::Response& response) {
  const std::string path = request.path.ends_with('/') ? request.path + "index.html" : request.path;
  std::optional<std::string> body = ReadFile(options.folder, path);
  if (!body) {
    response.status = 404;
    response.set_content("There is no such file.\n", "text/plain");
    return;
  }
  const std::string type = ContentType(path);
  if (type.starts_with("text/html")) ReplaceAll(*body, "{{ORIGIN}}", origin);
  if (options.bytesPerSecond == 0 || type.starts_with("text/html") || body->empty()) {
    response.set_content(*body, type);
    return;
  }
  const auto pause = std::chrono::microseconds(kPiece * 1'000'000 / options.bytesPerSecond);
  const std::size_t size = body->size();
  response.set_content_provider(
      size, type,
      [pause, data = std::move(*body)](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
        std::this_thread::sleep_for(pause);
        return sink.write(data.data() + offset, std::min(length, kPiece));
      });
}

}  // namespace

int main(int argc, char** argv) {
  const std::optional<Options> options = ReadArguments(argc, argv);
  if (!options) {
    std::cerr << "Usage: gallery_server [--rate KIB_PER_SECOND] FOLDER\n";
    return 2;
  }
  httplib::Server server;
  std::string origin;
  server.Get(".*", [&options, &origin](const httplib::Request& request, httplib::Response& response) {
    Serve(*options, origin, request, response);
  });
  const int port = server.bind_to_any_port("127.0.0.1");
  if (port < 0) {
    std::cerr << "gallery_server: no port on loopback\n";
    return 1;
  }
  origin = "http://127.0.0.1:" + std::to_string(port);
  std::cout << origin << std::endl;
  return server.listen_after_bind() ? 0 : 1;
}

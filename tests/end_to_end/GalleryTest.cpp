// SPDX-License-Identifier: MIT
//
// The main job at its real size: a page of 2,000 files from a real server.

#include <httplib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>
#include <sstream>

#include "tests/end_to_end/EndToEnd.h"

namespace quillforth::tests {
namespace {

// nginx over one folder.
class Nginx {
 public:
  // On a port that was free a moment ago.
  explicit Nginx(const std::filesystem::path& root)
      : port_(RawServer([](auto&, const auto&) { return RawServer::After::close; }).port()) {
    std::ofstream(root / "nginx.conf")
        << "daemon off; master_process off; pid nginx.pid; error_log stderr crit;"
        << (::geteuid() == 0 ? "user root;" : "")
        << "events {} http { access_log off; keepalive_requests 100000;"
        << " types { text/html html; image/jpeg jpg; }"
        << " client_body_temp_path t1; proxy_temp_path t2; fastcgi_temp_path t3;"
        << " uwsgi_temp_path t4; scgi_temp_path t5;"
        << " server { listen 127.0.0.1:" << port_ << "; root " << root.string() << "/site; } }\n";
    const std::string prefix = root.string() + "/";
    const std::string configuration = prefix + "nginx.conf";
    process_ = ::fork();
    if (process_ == 0) {
      ::execlp("nginx", "nginx", "-p", prefix.c_str(), "-c", configuration.c_str(), "-e", "stderr", nullptr);
      ::_exit(127);
    }
  }
  ~Nginx() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  Nginx(const Nginx&) = delete;
  Nginx& operator=(const Nginx&) = delete;

  [[nodiscard]] bool isUp() const {
    for (int i = 0; i < 1000 && ::waitpid(process_, nullptr, WNOHANG) == 0; ++i) {
      if (httplib::Client("127.0.0.1", port_).Get("/")) return true;
      ::usleep(5000);
    }
    return false;
  }
  [[nodiscard]] std::string url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  int port_;
  pid_t process_ = -1;
};

using Gallery = EndToEnd;

TEST_F(Gallery, TwoThousandFilesArriveInOrderAndUnchanged) {
  if (std::system("nginx -v 2>/dev/null") != 0) GTEST_SKIP() << "nginx is not installed";
  std::filesystem::create_directories(root_ / "site/files");
  std::mt19937 random(2);
  std::map<std::string, std::string> contents;
  std::ostringstream page;
  std::ostringstream expected;
  const Nginx nginx(root_);
  for (int i = 0; i < 2000; ++i) {
    const std::string name = "image-" + std::to_string(i) + ".jpg";
    std::string bytes(random() % (i % 100 == 0 ? 200000 : 4096), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    std::ofstream(root_ / "site/files" / name, std::ios::binary) << bytes;
    contents[name] = std::move(bytes);
    page << (i % 2 == 0 ? "<a href=\"files/" + name + "\">" : "<img src='/files/" + name + "'>");
    expected << "done " << nginx.url("/files/" + name) << " -> " << inFolder(name) << '\n';
  }
  std::ofstream(root_ / "site/index.html") << "<html><body>" << page.str() << "</body></html>";
  ASSERT_TRUE(nginx.isUp());
  const Outcome outcome = get({"--set", "overwriteFilesBySameName=yes", nginx.url("/")});
  EXPECT_EQ(outcome.exitStatus, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_TRUE(outcome.output == expected.str()) << outcome.output.substr(0, 2000);
  EXPECT_TRUE(files() == contents);
}

}  // namespace
}  // namespace quillforth::tests

// SPDX-License-Identifier: MIT

#include "linux/session/LinuxNetworkDiagnostics.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

namespace quillforth::platform {

namespace {

// Addresses of a root name server, as an example of a global address. Nothing is ever sent there.
constexpr const char* kGlobalAddressV4 = "198.41.0.4";
constexpr const char* kGlobalAddressV6 = "2001:503:ba3e::2:30";
constexpr std::uint16_t kAnyPort = 53;

struct SettingsProgram {
  const char* name;
  const char* panel;  // its argument, or null
};
constexpr SettingsProgram kSettingsPrograms[] = {{"gnome-control-center", "network"},
                                                 {"systemsettings", "kcm_networkmanagement"},
                                                 {"systemsettings5", "kcm_networkmanagement"},
                                                 {"cinnamon-settings", "network"},
                                                 {"nm-connection-editor", nullptr},
                                                 {"connman-gtk", nullptr}};

struct Address {
  sockaddr_storage storage{};
  socklen_t length = sizeof(sockaddr_storage);

  [[nodiscard]] sockaddr* get() { return reinterpret_cast<sockaddr*>(&storage); }
  [[nodiscard]] in_addr v4() const { return reinterpret_cast<const sockaddr_in*>(&storage)->sin_addr; }
  [[nodiscard]] in6_addr v6() const { return reinterpret_cast<const sockaddr_in6*>(&storage)->sin6_addr; }
};

Address GlobalAddress(sa_family_t family) {
  Address address;
  address.storage.ss_family = family;
  if (family == AF_INET) {
    auto* v4 = reinterpret_cast<sockaddr_in*>(&address.storage);
    v4->sin_port = htons(kAnyPort);
    inet_pton(AF_INET, kGlobalAddressV4, &v4->sin_addr);
    address.length = sizeof(sockaddr_in);
  } else {
    auto* v6 = reinterpret_cast<sockaddr_in6*>(&address.storage);
    v6->sin6_port = htons(kAnyPort);
    inet_pton(AF_INET6, kGlobalAddressV6, &v6->sin6_addr);
    address.length = sizeof(sockaddr_in6);
  }
  return address;
}

// The address that this machine would send from; nothing when there is no route.
std::optional<Address> SourceAddress(sa_family_t family) {
  const int descriptor = ::socket(family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return std::nullopt;
  Address remote = GlobalAddress(family);
  Address local;
  const bool isRouted = ::connect(descriptor, remote.get(), remote.length) == 0 &&
                        ::getsockname(descriptor, local.get(), &local.length) == 0;
  ::close(descriptor);
  if (!isRouted) return std::nullopt;
  return local;
}

bool IsSameAddress(const sockaddr* candidate, const Address& address) {
  if (candidate == nullptr || candidate->sa_family != address.storage.ss_family) return false;
  Address other;
  if (candidate->sa_family == AF_INET) {
    std::memcpy(&other.storage, candidate, sizeof(sockaddr_in));
    return other.v4().s_addr == address.v4().s_addr;
  }
  std::memcpy(&other.storage, candidate, sizeof(sockaddr_in6));
  const in6_addr left = other.v6();
  const in6_addr right = address.v6();
  return IN6_ARE_ADDR_EQUAL(&left, &right);
}

// Whether an interface with this address has a carrier. An interface that cannot be found counts as one that
// has.
bool HasCarrier(const Address& address) {
  ifaddrs* all = nullptr;
  if (::getifaddrs(&all) != 0) return true;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(all, &::freeifaddrs);
  bool isFound = false;
  for (const ifaddrs* entry = all; entry != nullptr; entry = entry->ifa_next) {
    if (!IsSameAddress(entry->ifa_addr, address)) continue;
    if ((entry->ifa_flags & IFF_RUNNING) != 0) return true;
    isFound = true;
  }
  return !isFound;
}

// A link-local source address means that there is no global one.
bool IsLinkLocal(const Address& address) {
  if (address.storage.ss_family != AF_INET6) return false;
  const in6_addr v6 = address.v6();
  return IN6_IS_ADDR_LINKLOCAL(&v6);
}

bool IsConnected(sa_family_t family) {
  const std::optional<Address> source = SourceAddress(family);
  return source && !IsLinkLocal(*source) && HasCarrier(*source);
}

}  // namespace

NetworkStatus LinuxNetworkDiagnostics::copyNetworkStatusPassively() {
  return IsConnected(AF_INET) || IsConnected(AF_INET6) ? NetworkStatus::connectionUp
                                                       : NetworkStatus::connectionDown;
}

void LinuxNetworkDiagnostics::diagnoseProblemInteractively() {
  if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) return;
  for (const SettingsProgram& program : kSettingsPrograms) {
    const QString path = QStandardPaths::findExecutable(QString::fromLatin1(program.name));
    const QStringList arguments =
        program.panel == nullptr ? QStringList() : QStringList(QString::fromLatin1(program.panel));
    if (!path.isEmpty() && QProcess::startDetached(path, arguments)) return;
  }
}

}  // namespace quillforth::platform

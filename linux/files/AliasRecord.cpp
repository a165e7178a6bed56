// SPDX-License-Identifier: MIT

#include "linux/files/AliasRecord.h"

#include <fcntl.h>

#include <QDataStream>
#include <QIODevice>

namespace quillforth::platform {

namespace {

constexpr char kMagic[] = {'Q', 'F', 'A', 'L'};
constexpr quint8 kVersion = 1;

void WriteBytes(QDataStream& out, const std::string& bytes) {
  out.writeRawData(bytes.data(), static_cast<int>(bytes.size()));
}

std::string ReadBytes(QDataStream& in, std::size_t length) {
  std::string bytes(length, '\0');
  const int read = in.readRawData(bytes.data(), static_cast<int>(length));
  if (read != static_cast<int>(length)) in.setStatus(QDataStream::ReadPastEnd);
  return bytes;
}

bool IsUsable(const AliasRecord& record) {
  return record.path.starts_with('/') && record.path.find('\0') == std::string::npos;
}

}  // namespace

bool SameFolder(const FolderIdentity& a, const FolderIdentity& b) {
  if (a.inode != b.inode) return false;
  if (a.birthTime && b.birthTime) return *a.birthTime == *b.birthTime;
  return a.deviceMajor == b.deviceMajor && a.deviceMinor == b.deviceMinor;
}

std::optional<FolderIdentity> IdentityOf(const struct statx& status) {
  if ((status.stx_mask & STATX_TYPE) == 0 || !S_ISDIR(status.stx_mode)) return std::nullopt;
  FolderIdentity identity{status.stx_dev_major, status.stx_dev_minor, status.stx_ino, std::nullopt};
  if ((status.stx_mask & STATX_BTIME) != 0) {
    identity.birthTime = FolderIdentity::BirthTime{status.stx_btime.tv_sec, status.stx_btime.tv_nsec};
  }
  return identity;
}

std::optional<FolderIdentity> IdentityAt(const std::string& path) {
  struct statx status {};
  if (::statx(AT_FDCWD, path.c_str(), 0, STATX_TYPE | STATX_INO | STATX_BTIME, &status) != 0) {
    return std::nullopt;
  }
  return IdentityOf(status);
}

QByteArray EncodeAliasRecord(const AliasRecord& record) {
  const FolderIdentity& identity = record.identity;
  const FolderIdentity::BirthTime birth = identity.birthTime.value_or(FolderIdentity::BirthTime{});
  QByteArray bytes;
  QDataStream out(&bytes, QIODevice::WriteOnly);
  out.setByteOrder(QDataStream::LittleEndian);
  out.writeRawData(kMagic, sizeof kMagic);
  out << kVersion << static_cast<quint8>(identity.birthTime ? 1 : 0);
  out << quint32{identity.deviceMajor} << quint32{identity.deviceMinor} << quint64{identity.inode};
  out << qint64{birth.seconds} << quint32{birth.nanoseconds} << qint32{record.handleType};
  out << static_cast<quint16>(record.handle.size()) << static_cast<quint16>(record.path.size());
  WriteBytes(out, record.handle);
  WriteBytes(out, record.path);
  return bytes;
}

std::optional<AliasRecord> DecodeAliasRecord(const QByteArray& bytes) {
  if (!bytes.startsWith(QByteArrayView(kMagic, sizeof kMagic))) return std::nullopt;
  QDataStream in(bytes);
  in.setByteOrder(QDataStream::LittleEndian);
  in.skipRawData(sizeof kMagic);
  quint8 version = 0;
  quint8 hasBirthTime = 0;
  quint64 inode = 0;
  qint64 seconds = 0;
  quint32 nanoseconds = 0;
  quint16 handleLength = 0;
  quint16 pathLength = 0;
  AliasRecord record;
  in >> version >> hasBirthTime >> record.identity.deviceMajor >> record.identity.deviceMinor >> inode;
  in >> seconds >> nanoseconds >> record.handleType >> handleLength >> pathLength;
  if (in.status() != QDataStream::Ok || version != kVersion || hasBirthTime > 1 ||
      handleLength > AliasRecord::kLongestHandle || pathLength > AliasRecord::kLongestPath) {
    return std::nullopt;
  }
  record.identity.inode = inode;
  if (hasBirthTime == 1) record.identity.birthTime = FolderIdentity::BirthTime{seconds, nanoseconds};
  record.handle = ReadBytes(in, handleLength);
  record.path = ReadBytes(in, pathLength);
  if (in.status() != QDataStream::Ok || !in.atEnd() || !IsUsable(record)) return std::nullopt;
  return record;
}

}  // namespace quillforth::platform

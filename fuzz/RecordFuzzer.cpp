// SPDX-License-Identifier: MIT
//
// Records that come back from where others may write: of folders in the settings, of requests on the socket.

#include "common/BoundedText.h"
#include "desktop/Request.h"
#include "fuzz/Fuzz.h"
#include "linux/files/LinuxAliasManager.h"
#include "net/URL.h"

namespace quillforth::fuzz {

namespace {

void CheckAlias(const QByteArray& bytes) {
  const std::optional<platform::AliasRecord> record = platform::DecodeAliasRecord(bytes);
  if (!record) return;
  const QByteArray again = platform::EncodeAliasRecord(*record);
  const std::optional<platform::AliasRecord> copy = platform::DecodeAliasRecord(again);
  Require(again.size() == bytes.size() && copy && platform::EncodeAliasRecord(*copy) == again,
          "a record comes back");
  Require(record->path.starts_with('/') && record->path.find('\0') == std::string::npos, "its path is one");
}

void CheckRequest(const QByteArray& line) {
  using desktop::Request;
  const std::optional<Request> request = desktop::RequestInLine(line);
  if (!request) return;
  Require(desktop::Fault(*request).isNull() && desktop::SizeOf(request->texts) <= Request::kMaxSize,
          "a request has no fault");
  const QByteArray again = desktop::LineOfRequest(*request);
  Require(!again.contains('\n') && again.size() < desktop::kMaxRequestLine, "it is one line");
  const std::optional<Request> copy = desktop::RequestInLine(again);
  Require(copy && copy->kind == request->kind && copy->texts == request->texts &&
              copy->activationToken == request->activationToken &&
              copy->handOver.identity == request->handOver.identity &&
              copy->handOver.deadline == request->handOver.deadline,
          "a request comes back");
}

void CheckArgument(const std::string& argument) {
  const std::optional<QString> uri = desktop::URIOfArgument(argument);
  Require(!uri || desktop::IsUsableURI(*uri), "an argument is a usable URI or none");
}

}  // namespace

void Check(std::string_view input) {
  const QByteArray bytes(input.data(), static_cast<qsizetype>(input.size()));
  CheckAlias(bytes);
  CheckRequest(bytes);
  CheckArgument(std::string(common::UpToNul(input)));
}

}  // namespace quillforth::fuzz

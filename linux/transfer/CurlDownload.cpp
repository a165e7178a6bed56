// SPDX-License-Identifier: MIT

#include "linux/transfer/CurlDownload.h"

#include "linux/transfer/CurlDownloadService.h"

namespace quillforth::platform {

void CurlDownload::setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) {
  if (!isDeciding_) return;
  const qsizetype slash = path.lastIndexOf(u'/');
  const QString name = path.sliced(slash + 1);
  const bool isUsable = path.startsWith(u'/') && !path.contains(QChar::Null) && !name.isEmpty() &&
                        name != u"." && name != u"..";
  destination_.reset();
  if (isUsable) destination_ = Destination{path.first(slash), name, allowOverwrite};
}

void CurlDownload::cancel() {
  if (service_ == nullptr) return;
  service_->thread_.post(CancelCommand{id_});
  service_->forget(id_);
}

void CurlDownload::receive(BeganReport&) {
  delegate_.downloadDidBegin(*this);
}

void CurlDownload::receive(ChallengeReport& report) {
  AuthenticationSheetParent* window = delegate_.downloadWindowForAuthenticationSheet(*this);
  if (service_ == nullptr) return;
  asked_ = report.challenge;
  if (window == nullptr) return answer(std::nullopt);
  const auto answerIfAlive = [weak = weak_from_this()](const std::optional<Credential>& credential) {
    if (const std::shared_ptr<CurlDownload> download = weak.lock()) download->answer(credential);
  };
  window->beginAuthenticationSheet(report.challenge, answerIfAlive);
}

void CurlDownload::answer(const std::optional<Credential>& credential) {
  const std::optional<AuthenticationChallenge> asked = std::exchange(asked_, std::nullopt);
  if (service_ == nullptr || !asked) return;
  if (!credential) return service_->fail(id_, OutcomeWithoutLogin(*asked));
  service_->thread_.post(
      AnswerCommand{id_, credential->user.toStdString(), credential->password.toStdString()});
}

// A coded body is stored as it was sent, whatever the delegate answers: there is no decoder here.
void CurlDownload::receive(ResponseReport& report) {
  delegate_.downloadDidReceiveResponse(*this, report.response);
  if (service_ != nullptr && report.isEncoded) {
    (void)delegate_.downloadShouldDecodeSourceDataOfMIMEType(*this, report.response.MIMEType);
  }
  if (service_ != nullptr) decideDestination(report);
}

void CurlDownload::decideDestination(ResponseReport& report) {
  isDeciding_ = true;
  delegate_.downloadDecideDestinationWithSuggestedFilename(*this, report.filename);
  isDeciding_ = false;
  if (service_ == nullptr) return;
  if (!destination_) {
    service_->fail(id_, {OutcomeKind::noDestination});
    return;
  }
  // The root keeps its only character.
  std::string folder = destination_->folder.isEmpty() ? "/" : destination_->folder.toStdString();
  DestinationFile::Target target{std::move(folder), destination_->name.toStdString(),
                                 destination_->allowOverwrite};
  service_->decide({id_, std::move(target)});
}

void CurlDownload::receive(DestinationReport& report) {
  const QString folder = report.folder.empty() ? destination_->folder : QString::fromStdString(report.folder);
  delegate_.downloadDidCreateDestination(*this, folder + u'/' + QString::fromStdString(report.name));
}

void CurlDownload::receive(DataReport& report) {
  delegate_.downloadDidReceiveDataOfLength(*this, report.length);
}

void CurlDownload::receive(FinishedReport&) {
  service_->forget(id_);
  delegate_.downloadDidFinish(*this);
}

void CurlDownload::receive(FailedReport& report) {
  service_->forget(id_);
  delegate_.downloadDidFailWithError(
      *this, {report.outcome.sentence(), url_.stringWithoutCredentials(), report.outcome.failure()});
}

}  // namespace quillforth::platform

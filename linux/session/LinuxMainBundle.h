// SPDX-License-Identifier: MIT
//
// What an installed, or just built, Quillforth knows of itself.
#pragma once

#include <QString>
#include <QStringList>

#include "platform/MainBundle.h"

namespace quillforth::platform {

class LinuxMainBundle final : public MainBundle {
 public:
  /// The program's signature, four characters.
  static constexpr char kSignature[] = "QFth";

  /// Looks for resources in `folders`, first match wins.
  explicit LinuxMainBundle(QStringList folders = standardResourceFolders());

  [[nodiscard]] std::optional<QString> objectForInfoDictionaryKey(const QString& key) override;
  [[nodiscard]] std::optional<QString> pathForResource(const QString& name) override;

  /// "../share/quillforth" from the folder of the running binary, installed or built.
  [[nodiscard]] static QStringList standardResourceFolders();

 private:
  QStringList folders_;
};

}  // namespace quillforth::platform

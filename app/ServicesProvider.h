// SPDX-License-Identifier: MIT
//
// What other programs can ask for through the Services menu. All that an application knows of the controller.
// Main thread.
#pragma once

#include <QString>

#include "app/Pasteboard.h"

namespace quillforth::app {

class ServicesProvider {
 public:
  virtual ~ServicesProvider() = default;
  /// Takes the pasteboard's string as a page or a file. Never fails: `error`, where it is not null, becomes
  /// null text, also when there is no string and nothing is done.
  virtual void downloadURLUserDataError(const Pasteboard& pasteboard, const QString& userData,
                                        QString* error) = 0;
};

}  // namespace quillforth::app

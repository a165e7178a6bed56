// SPDX-License-Identifier: MIT
//
// What the controller's outlets show at the moment, as plain values for whoever draws them. Main thread.
#pragma once

#include <QString>

namespace quillforth::terminal {

struct Status {
  QString currentURL;
  bool currentURLHidden = true;
  double fraction = 0.0;
  bool progressBarHidden = true;
  QString progressText;
  bool progressTextHidden = true;
  QString countText;
};

}  // namespace quillforth::terminal

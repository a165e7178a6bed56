// SPDX-License-Identifier: MIT
//
// How URLs come in: pages give their links to the queue.

#include "app/MyAppController.h"
#include "classify/PageOrFile.h"

namespace quillforth::app {

bool MyAppController::isWebPageURL(const QString& url) {
  return classify::isWebPageURL(url, extensionMap_, host_.readStreams);
}

}  // namespace quillforth::app

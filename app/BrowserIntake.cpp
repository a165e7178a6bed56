// SPDX-License-Identifier: MIT
//
// How the page that a browser shows comes in.

#include <algorithm>
#include <array>
#include <vector>

#include "app/BrowserScripts.h"
#include "app/MyAppController.h"
#include "classify/RunScript.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

namespace {

using common::FourCC;

struct Browser {
  common::FourCharCode creator;
  const char* script;
};

// Ordered: with two of them running, the upper one is asked.
constexpr std::array kBrowsers{
    Browser{FourCC("sfri"),
            "tell application \"Safari\"\r"
            "\tURL of first document\r"
            "end tell"},
    Browser{FourCC("MOZB"),
            "tell application \"Firefox\" to activate\r"
            "tell application \"System Events\"\r"
            "\tkeystroke \"l\" using {command down}\r"
            "\tkeystroke \"c\" using {command down}\r"
            "end tell\r"
            "delay 0.5\r"
            "activate\r"
            "the clipboard"},
    Browser{FourCC("OWEB"),
            "tell application \"OmniWeb\"\r"
            "\tset theWindow to (front window)\r"
            "\tdo script \"location.href\" window theWindow\r"
            "end tell"},
    Browser{FourCC("MSIE"),
            "tell application \"Internet Explorer\"\r"
            "\tdo script \"location.href\"\r"
            "end tell"},
    Browser{FourCC("MOZC"),
            "tell application \"Camino\"\r"
            "\tURL of current tab of front browser window\r"
            "end tell"},
    Browser{FourCC("OPRA"),
            "tell application \"Opera\"\r"
            "\tget URL of front window\r"
            "end tell"},
    Browser{FourCC("FLKb"),
            "tell application \"Flock\"\r"
            "\tset p to properties of front window as list\r"
            "\treturn item 3 of p\r"
            "end tell"},
    Browser{FourCC("rimZ"),
            "tell application \"Google Chrome\"\r"
            "\tget URL of active tab of first window\r"
            "end tell"},
};

}  // namespace

std::optional<QString> runningBrowserScript(platform::RunningProcesses& processes) {
  const std::vector<platform::RunningProcess> running = processes.runningProcesses();
  const auto* found = std::find_if(kBrowsers.begin(), kBrowsers.end(), [&running](const Browser& browser) {
    return std::any_of(running.begin(), running.end(), [&browser](const platform::RunningProcess& process) {
      return process.fileType == platform::kApplicationFileType && process.creator == browser.creator;
    });
  });
  return found == kBrowsers.end() ? std::nullopt : std::optional(QString::fromLatin1(found->script));
}

void MyAppController::processCurrentBrowserURL() {
  const std::optional<QString> script =
      host_.processes != nullptr ? runningBrowserScript(*host_.processes) : std::nullopt;
  const std::optional<QString> url =
      script && host_.scripts != nullptr ? classify::runScript(*script, *host_.scripts) : std::nullopt;
  if (!url) {
    host_.application->activateIgnoringOtherApps();
    doAlertAdding(
        host_.localizedText(LOCALIZED("Could not retrieve browser URL.")),
        host_.localizedText(LOCALIZED(
            "Either your browser is not running, doesn't have an open window, or it isn't supported "
            "by this feature.")));
    return;
  }
  takeURL(*url, true);
}

}  // namespace quillforth::app

// SPDX-License-Identifier: MIT

#include "terminal/HelpText.h"

namespace quillforth::terminal {

namespace {

constexpr std::string_view kProgram = R"(quillforth-cli - download files from the web in batches

Usage: quillforth-cli COMMAND [OPTION...] [ARGUMENT...]
       quillforth-cli --help | --version

Hand it the URL of a web page, and every file that the page links to is
downloaded into one folder, one after the other. Hand it the URL of a file, and
that file is downloaded.

Commands:
  get URL...              download files, and what pages link to
  links FILE|-|URL...     list the links of pages, without downloading them
  classify URL...         tell pages from files, and why
  comment FILE...         show or change the comments of files
  extensions              list the table of file-name extensions and types
  settings [KEY [VALUE]]  show or change the settings
  aggregate DIR           sort a folder's files into subfolders by extension

"quillforth-cli COMMAND --help" explains a command.

Options:
  -h, --help  show this text
  --version   show the version

Examples:
  Everything that a page links to, into a new folder:
    quillforth-cli get --to pictures http://www.example.org/gallery/
  The same in two steps, with a look at the list in between:
    quillforth-cli links http://www.example.org/gallery/ > list
    xargs quillforth-cli get --to pictures --file < list

Exit status:
  0    all well
  1    something failed: a page, a file, the connection, the output
  2    a mistake on the command line; nothing was done, but for the URLs
       that "get" was given beside a text that is none
  130  interrupted by Ctrl-C (143 by SIGTERM, 129 by a hangup)

Environment:
  XDG_CONFIG_HOME             where the settings are; default ~/.config
  XDG_DATA_HOME               where the default destination folder and the
                              user's own file types are; default ~/.local/share
  XDG_DATA_DIRS               where the system's file types are; default
                              /usr/local/share:/usr/share
  http_proxy, https_proxy,    proxies, and the hosts that are reached without
  ftp_proxy, all_proxy,       them, as for curl(1)
  no_proxy
  NO_COLOR                    when set and not empty: no colours
  TERM                        when unset or "dumb": no live display

Files:
  $XDG_CONFIG_HOME/Tessary Software/Quillforth.conf    the settings
  $XDG_DATA_HOME/Tessary Software/Quillforth           where files go as long as
                                                       no folder is chosen
  mime/globs2 in the folders of XDG_DATA_HOME          the types of file-name
  and XDG_DATA_DIRS                                    extensions
)";

constexpr std::string_view kGet = R"(quillforth-cli get - download files, and what pages link to

Usage: quillforth-cli get [OPTION...] URL...

Each URL is judged to be a page or a file, as "classify" shows. The links of a
page join a queue; so does a file. The queue is downloaded one file at a time.
A file appears under its name only when it is complete; an existing file is kept
and the new one gets a free name, unless overwriteFilesBySameName is set.

A text in the queue that is no URL is reported as failed and passed over. When
the connection is lost, the run ends. Ctrl-C ends it too, and leaves no partial
file behind.

Options:
  --to DIR         download into DIR, which is made when it does not exist. It
                   answers every question for a folder in this run, whatever
                   the settings say. Without it the stored folder is used, see
                   "quillforth-cli settings DestinationDirectory"; with
                   alwaysPromptForOutputLocation set, the terminal is asked
  --page           all URLs are pages; none is judged
  --file           all URLs are files; none is judged
  --ahead N        while a file is downloaded, already ask for the next N of the
                   queue, 0 to 8: short for --set downloadsAhead=N
  --set KEY=VALUE  use VALUE for a setting in this run only; may be repeated.
                   Keys and values are those of "quillforth-cli settings"
  --json           one JSON object an event on standard output, see below
  --no-cookies     keep no cookies. Otherwise the pages and files of a run share
                   those that servers set, which are never on disk
  --local          do not look whether there is an Internet connection: for
                   servers on this machine or in the local network
  -h, --help       show this text

Output:
  On a terminal: what is under way at the bottom, with a progress bar and the
  progress line, redrawn in place; what is done scrolls above. Elsewhere one
  line a file, as soon as it is done, and nothing else:
    done URL -> PATH
    failed URL: reason
  Messages go to standard error. User names and passwords in URLs are never
  shown. Control characters in texts from elsewhere are written as \xHH.

JSON events, one object a line, in ASCII; "event" says which:
  page      "url", "links": the page was read, its links are in the queue
  begin     "url": a download has begun
  progress  "url", "received", "expected" (bytes, null when unknown); at most
            once a second
  done      "url", "path", "bytes": the file is complete
  failed    "url", "reason": a page or a file
  end       "done", "failed", "notFetched" (how many), "status" (exit status)

A user name and a password that a server asks for are asked on the terminal. An
empty user name, or no terminal, makes that download fail.

Examples:
  quillforth-cli get --to pictures http://www.example.org/gallery/
  quillforth-cli get --file http://www.example.org/one.zip
  quillforth-cli get --set overwriteFilesBySameName=yes --to . URL
  quillforth-cli get --json URL | jq -r 'select(.event == "done") | .path'

Exit status:
  0    every page and file was fetched
  1    something failed, was not fetched, or could not be written
  2    a mistake on the command line; nothing was done, but for the URLs
       beside a text that is none
  130  interrupted by Ctrl-C (143 by SIGTERM, 129 by a hangup)
)";

constexpr std::string_view kLinks =
    R"(quillforth-cli links - list the links of pages, in the order of the queue

Usage: quillforth-cli links [--base URL | --url URL] [--null [--with-filename]]
                            FILE|-|URL...

Reads pages from files, from standard input (-), or from the web (a text that
begins with http://, https:// or ftp://), and prints each link as an absolute
URL. A file does not say where it came from, so one of --base and --url must;
for a page from the web, its own URL is the default for --url. A page that
cannot be read is named on standard error, and the others go on.

Options:
  --base URL       resolve all links against URL, whatever the page says
  --url URL        the page's own URL: links are resolved against it, unless the
                   page names another base in its head
  --null           for every link the text as it stands in the page, a NUL byte,
                   the absolute URL, a NUL byte; the bytes as they are, for
                   programs
  --with-filename  before each link its FILE, - or URL and a NUL byte
  -h, --help       show this text

Without --null each link is one line: control characters are written as
%-escapes, and a link that is not valid UTF-8 is left out, as the queue does.
A page may have 32 MiB.

Examples:
  quillforth-cli links http://www.example.org/gallery/
  quillforth-cli links --url http://www.example.org/gallery/ saved.html
  curl -s URL | quillforth-cli links --url URL --null - | xargs -0 -n 2 echo
  quillforth-cli links --url URL --null --with-filename *.html |
    xargs -0 -n 3 echo

Exit status:
  0  all pages were read, whether or not they have links
  1  a page could not be read, or the links not be written
  2  a mistake on the command line
)";

constexpr std::string_view kClassify = R"(quillforth-cli classify - tell pages from files, and why

Usage: quillforth-cli classify URL...

A URL whose path ends in a file-name extension is judged by that alone: a page
when "quillforth-cli extensions" lists a type for it that begins with "text/",
else a file. Letter case counts. A URL without an extension costs a "HEAD"
request: a page when the server's Content-Type begins with "text/". Whatever
fails makes a file; a server that stays silent is given up after ten seconds.

Output, one line a URL, separated by tabs:
  page or file, the URL, the reason

Options:
  -h, --help  show this text

Examples:
  $ quillforth-cli classify http://www.example.org/a.zip http://www.example.org/
  file  http://www.example.org/a.zip  extension .zip is application/zip
  page  http://www.example.org/       the server says text/html

Exit status:
  0  every URL was judged
  1  the result could not be written
  2  a mistake on the command line
)";

constexpr std::string_view kComment = R"(quillforth-cli comment - show or change the comments of files

Usage: quillforth-cli comment FILE...
       quillforth-cli comment --set TEXT FILE...

Prints the comment of each FILE, a file or a folder. Of several files, each line
begins with "FILE: ". A file that "get" has downloaded has its source URL as
comment, without user name and password, unless setCommentToLocationURL is no.

The comment is the extended attribute user.xdg.comment, which file managers
show. Not every file system keeps such attributes, and links have none. A
comment is printed byte by byte, and not at all when it is empty; on a terminal
its control characters are written as \xHH.

Options:
  --set TEXT  make TEXT the comment of each FILE; an empty TEXT removes it
  -h, --help  show this text

Examples:
  quillforth-cli comment *.zip
  quillforth-cli comment --set "the first of three" one.zip
  quillforth-cli comment --set "" -- -dashed-

Exit status:
  0  all well, also when there is no comment
  1  a FILE does not exist, or cannot carry the comment; the others were done
  2  a mistake on the command line
)";

constexpr std::string_view kExtensions = R"(quillforth-cli extensions - list the table of file-name extensions

Usage: quillforth-cli extensions

Prints the table by which URLs are judged to be pages or files, in its order: an
extension with its dot, a tab, its MIME type. The table is the desktop's own,
the shared MIME-info database; what the user has added there counts.

Options:
  -h, --help  show this text

Environment:
  XDG_DATA_HOME, XDG_DATA_DIRS  the folders whose mime/globs2 files are read

Exit status:
  0  the table was printed
  1  it could not be written
  2  a mistake on the command line
)";

constexpr std::string_view kSettings = R"(quillforth-cli settings - show or change the settings

Usage: quillforth-cli settings
       quillforth-cli settings KEY
       quillforth-cli settings KEY VALUE
       quillforth-cli settings --unset KEY

Without arguments: every setting, its value in effect, and "default" or
"stored", separated by tabs. With KEY: its value in effect. With VALUE: stores
it. A running Quillforth sees the change at once.

Options:
  --unset     go back to the default
  -h, --help  show this text

Keys with a value of yes or no (or true, false, on, off, 1, 0):
  showStatusWindow (yes)               bring the window forward when work comes
  bringApplicationToFront (yes)        and the program too; counts as no when
                                       showStatusWindow is no
  setCommentToLocationURL (yes)        note on each file where it came from
  overwriteFilesBySameName (no)        replace files instead of finding a free
                                       name
  aggregateFiles (no)                  sort the destination folder by file type
                                       when the queue is done
  preserveFileCommentsWhenAggregatingFiles (no)
                                       keep the notes when files are sorted
  alwaysPromptForOutputLocation (no)   ask for a folder each time
  showAlertsWhenErrorsOccur (no)       show a message for each download that
                                       fails
  notifyWhenDone (yes)                 show a notification when the queue is
                                       done, or a download failed, and no window
                                       of quillforth(1) is in front
  playSoundWhenDone (yes)              play a sound then
  sendReferer (no)                     tell the server on which page a file was
                                       found; another server is told only where
                                       the page is from
  allowKeystrokesForBrowserURL (no)    let quillforth(1) copy the address of
                                       Firefox with keystrokes, over the
                                       clipboard, when it cannot be had else

Key with a number as its value:
  downloadsAhead (0)                   how many of the queue are asked for while
                                       a file is downloaded, 0 to 8; they still
                                       come one after the other. At most six
                                       connections to a host are used

Key with a folder as its value:
  DestinationDirectory                 where downloads go: an existing folder,
                                       found again after it was moved, unless
                                       into the Trash

Examples:
  quillforth-cli settings aggregateFiles yes
  quillforth-cli settings DestinationDirectory ~/Pictures
  quillforth-cli settings --unset DestinationDirectory

Exit status:
  0  all well
  1  the folder does not exist, or the setting could not be stored
  2  a mistake on the command line, such as an unknown key or value

Files:
  $XDG_CONFIG_HOME/Tessary Software/Quillforth.conf
)";

constexpr std::string_view kAggregate =
    R"(quillforth-cli aggregate - sort a folder's files into subfolders by extension

Usage: quillforth-cli aggregate [--yes] [--dry-run] DIR

Moves what lies directly in DIR, and has an extension, into a subfolder of that
name: "a.pdf" goes into "pdf". Subfolders are made as they are needed. Folders
with an extension, such as "Tool.app", are moved whole; all other folders stay
as they are. Where the name is taken, the item gets a new one: "a - UUID.pdf".
Nothing is ever replaced. There is no way back, so the terminal is asked first.
Each item that has to stay is named, with the reason.

What stays where it is:
  names that begin with ".", files that are listed in DIR's file ".hidden", and
  names that are not UTF-8
  what cannot be moved: mount points, what permissions forbid, and items whose
  subfolder is there as a file, as a link, or on another file system

Options:
  --yes       do not ask
  --dry-run   only print what would be moved where, a line each: the name, a
              tab, the new name, both relative to DIR. Control characters are
              written as \xHH; the UUID will be another one
  -h, --help  show this text

Examples:
  quillforth-cli aggregate --dry-run ~/Downloads
  quillforth-cli aggregate --yes ~/Downloads
  quillforth-cli get --set aggregateFiles=yes --to pictures URL

Exit status:
  0  every item that has an extension was moved
  1  some could not be, DIR cannot be read, or the answer was no
  2  a mistake on the command line, or no terminal to ask on; nothing was done
)";

}  // namespace

std::string HelpText(std::string_view command) {
  if (command == "get") return std::string(kGet);
  if (command == "links") return std::string(kLinks);
  if (command == "classify") return std::string(kClassify);
  if (command == "comment") return std::string(kComment);
  if (command == "extensions") return std::string(kExtensions);
  if (command == "settings") return std::string(kSettings);
  if (command == "aggregate") return std::string(kAggregate);
  return std::string(kProgram);
}

std::string VersionText() {
  return "quillforth-cli " QUILLFORTH_VERSION;
}

}  // namespace quillforth::terminal

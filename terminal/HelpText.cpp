// SPDX-License-Identifier: MIT

#include "terminal/HelpText.h"

#include <algorithm>

#include "terminal/Options.h"
#include "terminal/Settings.h"

namespace quillforth::terminal {

namespace {

// What stands before and after the options of a command.
struct Page {
  std::string_view command;
  std::string_view introduction;
  std::string_view rest;
};

constexpr Page kPages[] = {
    {"",
     R"(Usage: quillforth-cli COMMAND [OPTION...] [ARGUMENT...]
       quillforth-cli --help | --version

Hand it the URL of a web page, and every file that the page links to is
downloaded into one folder, one after the other. Hand it the URL of a file, and
that file is downloaded.
)",
     R"(Examples:
  Everything that a page links to, into a new folder:
    quillforth-cli get --to pictures http://www.example.org/gallery/
  The same in two steps, with a look at the list in between:
    quillforth-cli links http://www.example.org/gallery/ > list
    quillforth-cli get --to pictures --file --input-file list

Exit status:
  0    all well
  1    something failed: a page, a file, the connection, the output
  2    a mistake on the command line. Nothing was done, except that "get"
       fetches the URLs that stand beside a text that is no URL
  130  interrupted by Ctrl-C (143 by SIGTERM, 129 by a hangup)

Environment:
  XDG_CONFIG_HOME             where the settings are; default ~/.config
  XDG_DATA_HOME               where the default destination folder and the
                              user's own file types are; default ~/.local/share
  XDG_DATA_DIRS               where the system's file types are; default
                              /usr/local/share:/usr/share
  http_proxy, https_proxy,    proxies, and the hosts that are reached without
  ftp_proxy, all_proxy,       them, as for curl(1)
  no_proxy                    (http_proxy in small letters only)
  SSL_CERT_FILE,              a file of certificates to trust instead of the
  SSL_CERT_DIR                system's, and a folder of more; see openssl-env(7)
  NO_COLOR                    when set and not empty: no colours
  TERM                        when unset or "dumb": no live display

Files:
  $XDG_CONFIG_HOME/Tessary Software/Quillforth.conf    the settings
  $XDG_DATA_HOME/Tessary Software/Quillforth           where files go as long as
                                                       no folder is chosen
  mime/globs2 in the folders of XDG_DATA_HOME          the types of file-name
  and XDG_DATA_DIRS                                    extensions
)"},
    {"get",
     R"(Usage: quillforth-cli get [OPTION...] [URL...]

Each URL is judged to be a page or a file, as "classify" shows. The links of a
page join a queue; so does a file. The queue is downloaded one file at a time.
A file appears under its name only when it is complete; an existing file is kept
and the new one gets a free name, unless overwriteFilesBySameName is set.

A URL may be typed without http://, and with blanks and other characters that
may not stand in one. A text in the queue that is no URL is reported as failed
and passed over. When the connection is lost, the run ends. Ctrl-C ends it too,
and leaves no partial file behind.
)",
     R"(Output:
  On a terminal, the last lines show what is under way, with a progress bar, and
  are redrawn in place; what is done scrolls above. Elsewhere there is one line
  for each file, as soon as it is done, and nothing else:
    done URL -> PATH
    failed URL: reason
    moved PATH -> PATH                     when files are sorted
    retry URL: reason                      with --retry
    skipped URL -> PATH                    with --skip-existing and --archive
    would fetch URL -> NAME (a guess)      with --dry-run
  Messages go to standard error. User names and passwords in URLs are never
  shown. Control characters in texts from elsewhere are written as \xHH.

JSON events, one object a line, in ASCII; "event" says which:
  page      "url", "links": the page was read, its links are in the queue
  begin     "url": a download has begun
  progress  "url", "received", "expected" (bytes, null when unknown); at most
            once a second
  done      "url", "path", "bytes": the file is complete
  failed    "url", "reason", "kind" ("page" or "file"); "code", a word for
            programs, unless the text is no URL; "httpStatus" when the code is
            "status"
  retry     the same, of what is tried again later
  moved     "from", "to": a file was sorted
  skipped   "url", "where": the file, or the archive
  wouldFetch  "url", "guessedName"
  end       "done", "failed", "notFetched" (how many), "skipped" when there are
            any, "status" (exit status)

A user name and a password that a server asks for are asked on the terminal. An
empty user name, or no terminal, makes that download fail.

Examples:
  quillforth-cli get --to pictures http://www.example.org/gallery/
  quillforth-cli get --file http://www.example.org/one.zip
  quillforth-cli get --set overwriteFilesBySameName=yes --to . URL
  quillforth-cli get -i list.txt --rest left.txt --retry 5
  quillforth-cli get --accept pictures --unique --skip-existing -d pictures URL
  quillforth-cli get --json URL | jq -r 'select(.event == "done") | .path'

Exit status:
  0    every page and file was fetched
  1    something failed, was not fetched, or could not be written
  2    a mistake on the command line. Nothing was done, except that the URLs
       that stand beside a text that is no URL were fetched
  130  interrupted by Ctrl-C (143 by SIGTERM, 129 by a hangup)
)"},
    {"links",
     R"(Usage: quillforth-cli links [OPTION...] FILE|-|URL...

Reads pages from files, from standard input (-), or from the web (a text that
begins with http://, https:// or ftp://), and prints each link as an absolute
URL. A file does not say where it came from, so one of --base and --url must;
for a page from the web, its own URL is the default for --url. A page that
cannot be read is named on standard error, and the others go on.
)",
     R"(Without --null each link is one line: control characters are written as
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
  1  a page could not be read, a link not be judged, or the links not be written
  2  a mistake on the command line
)"},
    {"classify",
     R"(Usage: quillforth-cli classify [--json] URL...
       quillforth-cli classify [--json] --input-file FILE [URL...]

A URL whose path ends in a file-name extension is judged by that alone: a page
when "quillforth-cli extensions" lists a type for it that begins with "text/",
else a file. Letter case counts. A URL without an extension costs a "HEAD"
request: a page when the server's Content-Type begins with "text/". Whatever
fails makes a file; a server that stays silent is given up after ten seconds.
A URL may be typed as for "get", and is printed as it is meant. A text that
makes none is printed as it is, as a file.

Output, one line a URL, separated by tabs:
  page or file, the URL, the reason
)",
     R"(Examples:
  $ quillforth-cli classify http://www.example.org/a.zip http://www.example.org/
  file  http://www.example.org/a.zip  extension .zip is application/zip
  page  http://www.example.org/       the server says text/html

Exit status:
  0  every URL was judged
  1  the result could not be written
  2  a mistake on the command line
)"},
    {"comment",
     R"(Usage: quillforth-cli comment FILE...
       quillforth-cli comment --set TEXT FILE...
       quillforth-cli comment --find URL-PART DIR...

Prints the comment of each FILE, a file or a folder. Of several files, each line
begins with "FILE: ". A file that "get" has downloaded has its source URL as
comment, without user name and password, unless setCommentToLocationURL is no.

The comment is the extended attribute user.xdg.comment, which file managers
show. Not every file system keeps such attributes, and links have none. A
comment is printed byte by byte, and not at all when it is empty; on a terminal
its control characters are written as \xHH.
)",
     R"(Examples:
  quillforth-cli comment *.zip
  quillforth-cli comment --set "the first of three" one.zip
  quillforth-cli comment --set "" -- -dashed-

Exit status:
  0  all well, also when there is no comment
  1  a FILE does not exist, or cannot carry the comment; the others were done;
     or --find found nothing
  2  a mistake on the command line
)"},
    {"extensions",
     R"(Usage: quillforth-cli extensions

Prints the table by which URLs are judged to be pages or files, in its order: an
extension with its dot, a tab, its MIME type. The table is the desktop's own,
the shared MIME-info database; what the user has added there counts.
)",
     R"(Environment:
  XDG_DATA_HOME, XDG_DATA_DIRS  the folders whose mime/globs2 files are read

Exit status:
  0  the table was printed
  1  it could not be written
  2  a mistake on the command line
)"},
    {"settings",
     R"(Usage: quillforth-cli settings [--json] [KEY]
       quillforth-cli settings KEY VALUE
       quillforth-cli settings --unset KEY

Without arguments: every setting, its value in effect, and "default" or
"stored", separated by tabs. With KEY: its value in effect. With VALUE: stores
it. A running Quillforth sees the change at once.
)",
     R"(Key with a number as its value:
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
)"},
    {"aggregate",
     R"(Usage: quillforth-cli aggregate [--yes] [--dry-run] DIR

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
)",
     R"(Examples:
  quillforth-cli aggregate --dry-run ~/Downloads
  quillforth-cli aggregate --yes ~/Downloads
  quillforth-cli get --set aggregateFiles=yes --to pictures URL

Exit status:
  0  every item that has an extension was moved
  1  some could not be, DIR cannot be read, or the answer was no
  2  a mistake on the command line, or no terminal to ask on; nothing was done
)"},
};

constexpr std::size_t kColumns = 80;
constexpr std::size_t kCommandColumn = 27;
constexpr std::size_t kOptionColumn = 22;
constexpr std::size_t kSettingColumn = 39;

// `head` at the left, and beside it `text`, which begins in a column of its own.
void AppendEntry(std::string& page, std::string_view head, std::string_view text, std::size_t column) {
  std::string line = "  " + std::string(head);
  if (line.size() + 2 > column) {
    page.append(line).append("\n");
    line.clear();
  }
  line.resize(column, ' ');
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    const bool isFirst = line.ends_with(' ');
    if (!isFirst && line.size() + 1 + word.size() > kColumns) {
      page.append(line).append("\n");
      line.assign(column, ' ');
    } else if (!isFirst) {
      line += ' ';
    }
    line += word;
  }
  page.append(line.substr(0, line.find_last_not_of(' ') + 1)).append("\n");
}

std::string HeadOf(const Option& option) {
  std::string head;
  for (const char c : option.names) head.append(1, c).append(c == ',' ? " " : "");
  if (!option.value.empty()) head.append(" ").append(option.value);
  return head;
}

void AppendOptions(std::string& page, const CommandDescription& command) {
  page += "\nOptions:\n";
  for (const Option& option : command.options) {
    if (!option.isArgument()) AppendEntry(page, HeadOf(option), option.text, kOptionColumn);
  }
}

void AppendCommands(std::string& page) {
  page += "\nCommands:\n";
  for (const CommandDescription& command : Commands()) {
    if (command.name.empty()) continue;
    std::string head(command.name);
    if (!command.arguments.empty()) head.append(" ").append(command.arguments);
    AppendEntry(page, head, command.summary, kCommandColumn);
  }
  page += "\n\"quillforth-cli COMMAND --help\" or \"quillforth-cli help COMMAND\" explains a\ncommand.\n";
}

void AppendSettings(std::string& page) {
  page += "\nKeys with a value of yes or no (or true, false, on, off, 1, 0):\n";
  for (const BooleanSetting& setting : BooleanSettings()) {
    const std::string head =
        std::string(setting.preference.key.data()) + (setting.preference.defaultValue ? " (yes)" : " (no)");
    AppendEntry(page, head, setting.text, kSettingColumn);
  }
}

}  // namespace

std::string HelpText(std::string_view name) {
  const auto command = std::ranges::find(Commands(), name, &CommandDescription::name);
  const auto page = std::ranges::find(kPages, name, &Page::command);
  std::string text = "quillforth-cli";
  if (!name.empty()) text.append(" ").append(name);
  text.append(" - ").append(command->summary).append("\n\n").append(page->introduction);
  if (name.empty()) AppendCommands(text);
  AppendOptions(text, *command);
  if (name == "settings") AppendSettings(text);
  return text.append("\n").append(page->rest);
}

std::string VersionText() {
  return "quillforth-cli " QUILLFORTH_VERSION;
}

}  // namespace quillforth::terminal

// SPDX-License-Identifier: MIT

#include "terminal/Options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <array>
#include <type_traits>

#include "terminal/CommandLine.h"

namespace quillforth::terminal {

namespace {

// A flag for a truth value, an option for all else; each value of a list comes after the name once more.
template <typename Arguments, auto member>
CLI::Option* Fill(CLI::App& command, const std::string& names, void* parsed) {
  auto& place = std::get<Arguments>(static_cast<ParsedArguments*>(parsed)->commands).*member;
  if constexpr (std::is_same_v<std::remove_reference_t<decltype(place)>, bool>) {
    return command.add_flag(names, place);
  } else if (names.starts_with('-')) {
    return command.add_option(names, place)->allow_extra_args(false);
  } else {
    return command.add_option(names, place);
  }
}

constexpr Option kHelp{"-h,--help", "", nullptr, "show this text"};

constexpr std::array kProgramOptions{kHelp, Option{"-V,--version", "", nullptr, "show the version"}};

constexpr std::array kGetOptions{
    Option{.names = "-d,-P,--to",
           .value = "DIR",
           .bind = Fill<GetArguments, &GetArguments::to>,
           .text =
               "download into DIR, which is made when it does not exist. It answers every question for a "
               "folder in this run, whatever the settings say. Without it the stored folder is used, see "
               "\"quillforth-cli settings DestinationDirectory\"; with alwaysPromptForOutputLocation set, "
               "the terminal is asked, and Return alone answers with the folder that is shown",
           .completes = Completes::folders,
           .example = "get --to pictures http://www.example.org/gallery/"},
    Option{
        .names = "-i,--input-file",
        .value = "FILE",
        .bind = Fill<GetArguments, &GetArguments::inputFiles>,
        .text =
            "take URLs from FILE, one a line, or from standard input when FILE is -. Empty lines and those "
            "that begin with # are skipped. The output of \"classify\" is a list, too, and says which are "
            "pages",
        .completes = Completes::files,
        .example = "get --input-file list.txt",
        .isRepeated = true},
    Option{.names = "--rest",
           .value = "FILE",
           .bind = Fill<GetArguments, &GetArguments::rest>,
           .text =
               "at the end, also after Ctrl-C, write the URLs that failed or were not fetched, and the texts "
               "that are no URLs, to FILE, for --input-file. Only its owner may read it, because it keeps "
               "passwords in URLs. With --dry-run nothing is written",
           .completes = Completes::files,
           .example = "get --rest left.txt --input-file list.txt"},
    Option{.names = "--unique",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::unique>,
           .text = "take each URL once, wherever it stands",
           .example = "get --unique http://www.example.org/one/ http://www.example.org/two/"},
    Option{.names = "--page",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::page>,
           .text = "take all URLs as pages; none is judged",
           .example = "get --page http://www.example.org/list.php",
           .excludes = "--file"},
    Option{.names = "--file",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::file>,
           .text = "take all URLs as files; none is judged",
           .example = "get --file http://www.example.org/index.html",
           .excludes = "--page"},
    Option{.names = "--accept",
           .value = "LIST",
           .bind = Fill<GetArguments, &GetArguments::accept>,
           .text =
               "of the links of pages, take only these: extensions and kinds, with commas between. The "
               "kinds are pictures, sound, film, archives, documents and pages. A link without an extension "
               "counts as a page",
           .completes = Completes::list,
           .words = "pictures sound film archives documents pages",
           .example = "get --accept pictures,pdf http://www.example.org/gallery/",
           .isRepeated = true},
    Option{.names = "--reject",
           .value = "LIST",
           .bind = Fill<GetArguments, &GetArguments::reject>,
           .text = "leave out these, also when --accept names them",
           .completes = Completes::list,
           .words = "pictures sound film archives documents pages",
           .example = "get --reject pages,gif http://www.example.org/gallery/",
           .isRepeated = true},
    Option{
        .names = "--match",
        .value = "REGEX",
        .bind = Fill<GetArguments, &GetArguments::match>,
        .text =
            "take only links in whose absolute URL this regular expression (of Perl's kind) is found; may be "
            "repeated, and then one of them has to be found. A URL on which it needs too much work has "
            "failed",
        .example = "get --match '/full/.*[0-9]+[.]jpg$' http://www.example.org/gallery/",
        .isRepeated = true},
    Option{.names = "--no-match",
           .value = "REGEX",
           .bind = Fill<GetArguments, &GetArguments::noMatch>,
           .text = "leave out links in which it is found; may be repeated",
           .example = "get --no-match thumb http://www.example.org/gallery/",
           .isRepeated = true},
    Option{.names = "--same-host",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::sameHost>,
           .text = "take only links to the host of their page",
           .example = "get --same-host http://www.example.org/gallery/"},
    Option{
        .names = "-n,--dry-run",
        .value = "",
        .bind = Fill<GetArguments, &GetArguments::dryRun>,
        .text =
            "fetch no file, and print what would be fetched, with the name that the URL suggests. Pages are "
            "judged and read as always",
        .example = "get --dry-run --accept pictures http://www.example.org/gallery/"},
    Option{.names = "--skip-existing",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::skipExisting>,
           .text =
               "skip a URL whose file is below the destination folder already, whatever its name is now. The "
               "files are known by what \"get\" notes on them, see \"comment\"",
           .example = "get --skip-existing --to pictures http://www.example.org/gallery/"},
    Option{.names = "--archive",
           .value = "FILE",
           .bind = Fill<GetArguments, &GetArguments::archive>,
           .text = "skip the URLs that FILE lists, and add each that is fetched, without password: for "
                   "folders where nothing can be noted on files, or files that are moved away",
           .completes = Completes::files,
           .example = "get --archive done.txt http://www.example.org/gallery/"},
    Option{.names = "--cookies",
           .value = "FILE",
           .bind = Fill<GetArguments, &GetArguments::cookies>,
           .text = "send the cookies in FILE, as browsers export them (Netscape's form). FILE is never "
                   "written; what "
                   "servers set holds for the run",
           .completes = Completes::files,
           .example = "get --cookies cookies.txt http://www.example.org/members/",
           .excludes = "--no-cookies"},
    Option{.names = "--header",
           .value = "LINE",
           .bind = Fill<GetArguments, &GetArguments::headers>,
           .text = "send the field \"Name: value\" with pages and files, or with @FILE each line of FILE. "
                   "It goes to every host that a page links to. Only Authorization, Cookie and "
                   "Proxy-Authorization do not: they go where scheme, host and port are those of a URL that "
                   "you give. After a redirect no field goes to another scheme, host or port, except from "
                   "http to https on the default port. A Cookie is sent together with those of --cookies and "
                   "of the server",
           .example = "get --header 'Accept-Language: de' http://www.example.org/",
           .isRepeated = true},
    Option{.names = "--referer",
           .value = "WHAT",
           .bind = Fill<GetArguments, &GetArguments::referer>,
           .text = "tell servers where a link stood: its page (the word page), nothing (the word none), or "
                   "always the URL that is given here. User name, password and fragment are never told, and "
                   "nothing is told from https to http. Without this option the setting sendReferer counts",
           .completes = Completes::words,
           .words = "page none",
           .example = "get --referer page http://www.example.org/gallery/"},
    Option{.names = "--user-agent",
           .value = "TEXT",
           .bind = Fill<GetArguments, &GetArguments::userAgent>,
           .text = "call the program TEXT when it asks for pages and files",
           .example = "get --user-agent 'Mozilla/5.0' http://www.example.org/"},
    Option{
        .names = "--retry",
        .value = "N",
        .bind = Fill<GetArguments, &GetArguments::retry>,
        .text =
            "when all else is done, try again what may work later: after a time-out, a connection that broke "
            "off, an answer of 408, 429 or 5xx; up to N times for each URL, after 1, 2, 4 and so on to 60 "
            "seconds. A server that says how long (Retry-After) is left alone for that time, up to 10 "
            "minutes; the order stays, so what stands behind one of its URLs waits, too",
        .completes = Completes::words,
        .words = "1 2 3 5 10",
        .example = "get --retry 5 --input-file list.txt"},
    Option{.names = "--wait",
           .value = "SECONDS",
           .bind = Fill<GetArguments, &GetArguments::wait>,
           .text = "let so much time pass between the end of a request and the next one, whether for a "
                   "file, a page or the kind of a URL; 0.5 is half a second. Redirects and logins belong to "
                   "their request. --ahead does not count then",
           .example = "get --wait 2 http://www.example.org/gallery/"},
    Option{.names = "--limit-rate",
           .value = "BYTES",
           .bind = Fill<GetArguments, &GetArguments::limitRate>,
           .text = "fetch at most so many bytes a second. A k behind the number stands for 1,024 bytes, M "
                   "for 1,024 k, and G for 1,024 M. --ahead does not count then",
           .example = "get --limit-rate 500k http://www.example.org/big.iso"},
    Option{.names = "--no-comment",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::noComment>,
           .text = "do not note on files where they came from. --skip-existing needs --archive then",
           .example = "get --no-comment http://www.example.org/one.zip"},
    Option{.names = "--remote-time",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::remoteTime>,
           .text = "give each file the time of its last change, as the server tells it (Last-Modified)",
           .example = "get --remote-time http://www.example.org/one.zip"},
    Option{.names = "--ahead",
           .value = "N",
           .bind = Fill<GetArguments, &GetArguments::ahead>,
           .text =
               "while a file is downloaded, already ask for the next N of the queue, 0 to 8: short for --set "
               "downloadsAhead=N",
           .completes = Completes::words,
           .words = "0 1 2 3 4 5 6 7 8",
           .example = "get --ahead 4 http://www.example.org/gallery/"},
    Option{.names = "--set",
           .value = "KEY=VALUE",
           .bind = Fill<GetArguments, &GetArguments::settings>,
           .text = "use VALUE for a setting in this run only; may be repeated. Keys and values are those of "
                   "\"quillforth-cli settings\"",
           .completes = Completes::settings,
           .example = "get --set overwriteFilesBySameName=yes http://www.example.org/one.zip",
           .isRepeated = true},
    Option{
        .names = "--no-cookies",
        .value = "",
        .bind = Fill<GetArguments, &GetArguments::noCookies>,
        .text =
            "keep no cookies. Otherwise the pages and files of a run share those that servers set. They are "
            "never written to a disk",
        .example = "get --no-cookies http://www.example.org/gallery/"},
    Option{.names = "--local",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::local>,
           .text =
               "do not look whether there is an Internet connection: for servers on this machine or in the "
               "local network",
           .example = "get --local http://localhost:8000/"},
    Option{.names = "--json",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::json>,
           .text = "print one JSON object for each event on standard output; see below",
           .example = "get --json http://www.example.org/ | jq -r 'select(.event == \"done\") | .path'"},
    Option{.names = "-q,--quiet",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::quiet>,
           .text = "print only what failed",
           .example = "get --quiet http://www.example.org/gallery/",
           .excludes = "--json"},
    Option{
        .names = "-v,--verbose",
        .value = "",
        .bind = Fill<GetArguments, &GetArguments::verbose>,
        .text =
            "print requests and the heads of answers on standard error, without passwords, cookies and the "
            "values of --header",
        .example = "get --verbose http://www.example.org/one.zip"},
    kHelp,
    Option{.names = "URL", .value = "", .bind = Fill<GetArguments, &GetArguments::urls>, .text = ""},
};

constexpr std::array kLinksOptions{
    Option{.names = "--base",
           .value = "URL",
           .bind = Fill<LinksArguments, &LinksArguments::base>,
           .text = "resolve all links against URL, whatever the page says",
           .example = "links --base http://www.example.org/ saved.html",
           .excludes = "--url"},
    Option{.names = "--url",
           .value = "URL",
           .bind = Fill<LinksArguments, &LinksArguments::url>,
           .text =
               "the page's own URL: links are resolved against it, unless the page names another base in its "
               "head",
           .example = "links --url http://www.example.org/gallery/ saved.html",
           .excludes = "--base"},
    Option{.names = "--null",
           .value = "",
           .bind = Fill<LinksArguments, &LinksArguments::null>,
           .text =
               "print for every link the text as it stands in the page, a NUL byte, the absolute URL, a NUL "
               "byte: the bytes as they are, for programs",
           .example = "links --null http://www.example.org/ | xargs -0 -n 2 echo"},
    Option{
        .names = "--with-filename",
        .value = "",
        .bind = Fill<LinksArguments, &LinksArguments::withFilename>,
        .text = "with --null: print its FILE, - or URL and a NUL byte before each link",
        .example = "links --url http://www.example.org/ --null --with-filename *.html | xargs -0 -n 3 echo",
        .needs = "--null"},
    Option{.names = "--accept",
           .value = "LIST",
           .bind = Fill<LinksArguments, &LinksArguments::accept>,
           .text =
               "of the links of pages, take only these: extensions and kinds, with commas between. The "
               "kinds are pictures, sound, film, archives, documents and pages. A link without an extension "
               "counts as a page",
           .completes = Completes::list,
           .words = "pictures sound film archives documents pages",
           .example = "links --accept pictures,pdf http://www.example.org/gallery/",
           .isRepeated = true},
    Option{.names = "--reject",
           .value = "LIST",
           .bind = Fill<LinksArguments, &LinksArguments::reject>,
           .text = "leave out these, also when --accept names them",
           .completes = Completes::list,
           .words = "pictures sound film archives documents pages",
           .example = "links --reject pages,gif http://www.example.org/gallery/",
           .isRepeated = true},
    Option{
        .names = "--match",
        .value = "REGEX",
        .bind = Fill<LinksArguments, &LinksArguments::match>,
        .text =
            "take only links in whose absolute URL this regular expression (of Perl's kind) is found; may be "
            "repeated, and then one of them has to be found. Links on which it needs too much work are left "
            "out and counted in a message",
        .example = "links --match '/full/.*[0-9]+[.]jpg$' http://www.example.org/gallery/",
        .isRepeated = true},
    Option{.names = "--no-match",
           .value = "REGEX",
           .bind = Fill<LinksArguments, &LinksArguments::noMatch>,
           .text = "leave out links in which it is found; may be repeated",
           .example = "links --no-match thumb http://www.example.org/gallery/",
           .isRepeated = true},
    Option{.names = "--same-host",
           .value = "",
           .bind = Fill<LinksArguments, &LinksArguments::sameHost>,
           .text = "take only links to the host of their page",
           .example = "links --same-host http://www.example.org/gallery/"},
    Option{.names = "--json",
           .value = "",
           .bind = Fill<LinksArguments, &LinksArguments::json>,
           .text = "print one JSON object for each link, with \"source\" and \"url\", both without user name "
                   "and password, and \"link\", as it stands in the page",
           .example = "links --json http://www.example.org/ | jq -r .url",
           .excludes = "--null"},
    kHelp,
    Option{.names = "FILE",
           .value = "",
           .bind = Fill<LinksArguments, &LinksArguments::sources>,
           .text = "",
           .completes = Completes::files,
           .isRequired = true},
};

constexpr std::array kClassifyOptions{
    Option{.names = "-i,--input-file",
           .value = "FILE",
           .bind = Fill<ClassifyArguments, &ClassifyArguments::inputFiles>,
           .text = "take URLs from FILE, one a line, or from standard input when FILE is -; see \"get\"",
           .completes = Completes::files,
           .example = "classify --input-file list.txt > judged.txt",
           .isRepeated = true},
    Option{.names = "--json",
           .value = "",
           .bind = Fill<ClassifyArguments, &ClassifyArguments::json>,
           .text = "print one JSON object for each URL, with \"kind\" (\"page\" or \"file\"), \"url\" and "
                   "\"reason\"",
           .example = "classify --json http://www.example.org/"},
    kHelp,
    Option{
        .names = "URL", .value = "", .bind = Fill<ClassifyArguments, &ClassifyArguments::urls>, .text = ""},
};

constexpr std::array kCommentOptions{
    Option{.names = "--set",
           .value = "TEXT",
           .bind = Fill<CommentArguments, &CommentArguments::text>,
           .text = "make TEXT the comment of each FILE; an empty TEXT removes it",
           .example = "comment --set \"the first of three\" one.zip"},
    Option{.names = "--find",
           .value = "URL-PART",
           .bind = Fill<CommentArguments, &CommentArguments::find>,
           .text = "take each FILE as a folder, and print the files below it that came from a URL with "
                   "URL-PART in it. A line is the path, a tab, the URL",
           .example = "comment --find example.org/gallery ~/Pictures",
           .excludes = "--set"},
    kHelp,
    Option{.names = "FILE",
           .value = "",
           .bind = Fill<CommentArguments, &CommentArguments::files>,
           .text = "",
           .completes = Completes::files,
           .isRequired = true},
};

constexpr std::array kExtensionsOptions{kHelp};

constexpr std::array kSettingsOptions{
    Option{.names = "--unset",
           .value = "",
           .bind = Fill<SettingsArguments, &SettingsArguments::unset>,
           .text = "go back to the default",
           .example = "settings --unset DestinationDirectory",
           .excludes = "VALUE",
           .needs = "KEY"},
    Option{
        .names = "--json",
        .value = "",
        .bind = Fill<SettingsArguments, &SettingsArguments::json>,
        .text =
            "print one JSON object for each setting, with \"key\", \"value\" and \"origin\" (\"default\" or "
            "\"stored\")",
        .example = "settings --json"},
    kHelp,
    Option{.names = "KEY",
           .value = "",
           .bind = Fill<SettingsArguments, &SettingsArguments::key>,
           .text = "",
           .completes = Completes::settings},
    Option{.names = "VALUE",
           .value = "",
           .bind = Fill<SettingsArguments, &SettingsArguments::value>,
           .text = "",
           .completes = Completes::settingValues,
           .needs = "KEY"},
};

constexpr std::array kAggregateOptions{
    Option{.names = "--yes",
           .value = "",
           .bind = Fill<AggregateArguments, &AggregateArguments::yes>,
           .text = "do not ask",
           .example = "aggregate --yes ~/Downloads"},
    Option{
        .names = "-n,--dry-run",
        .value = "",
        .bind = Fill<AggregateArguments, &AggregateArguments::dryRun>,
        .text =
            "only print what would be moved where, a line each: the name, a tab, the new name, both relative "
            "to DIR. Control characters are written as \\xHH; the UUID will be another one. Links that would "
            "point to nothing after the move are named",
        .example = "aggregate --dry-run ~/Downloads"},
    kHelp,
    Option{.names = "DIR",
           .value = "",
           .bind = Fill<AggregateArguments, &AggregateArguments::folder>,
           .text = "",
           .completes = Completes::folders,
           .isRequired = true},
};

constexpr std::array kCommands{
    CommandDescription{"", "download files from the web in batches", "", kProgramOptions},
    CommandDescription{"get", "download files, and what pages link to", "URL...", kGetOptions},
    CommandDescription{"links", "list the links of pages, without downloading them", "FILE|-|URL...",
                       kLinksOptions},
    CommandDescription{"classify", "tell pages from files, and why", "URL...", kClassifyOptions},
    CommandDescription{"comment", "show or change the comments of files", "FILE...", kCommentOptions},
    CommandDescription{"extensions", "list the table of file-name extensions and types", "",
                       kExtensionsOptions},
    CommandDescription{"settings", "show or change the settings", "[KEY [VALUE]]", kSettingsOptions},
    CommandDescription{"aggregate", "sort a folder's files into subfolders by extension", "DIR",
                       kAggregateOptions},
};

}  // namespace

std::span<const CommandDescription> Commands() {
  return kCommands;
}

}  // namespace quillforth::terminal

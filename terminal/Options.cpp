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
CLI::Option* Fill(CLI::App& command, const std::string& names, ParsedArguments& parsed) {
  auto& place = std::get<Arguments>(parsed.commands).*member;
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
               "the terminal is asked",
           .completes = Completes::folders,
           .example = "get --to pictures http://www.example.org/gallery/"},
    Option{.names = "--page",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::page>,
           .text = "all URLs are pages; none is judged",
           .example = "get --page http://www.example.org/list.php",
           .excludes = "--file"},
    Option{.names = "--file",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::file>,
           .text = "all URLs are files; none is judged",
           .example = "get --file http://www.example.org/index.html",
           .excludes = "--page"},
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
           .example = "get --set overwriteFilesBySameName=yes http://www.example.org/one.zip"},
    Option{.names = "--no-cookies",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::noCookies>,
           .text =
               "keep no cookies. Otherwise the pages and files of a run share those that servers set, which "
               "are never on disk",
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
           .text = "one JSON object an event on standard output, see below",
           .example = "get --json http://www.example.org/ | jq -r 'select(.event == \"done\") | .path'"},
    kHelp,
    Option{.names = "URL",
           .value = "",
           .bind = Fill<GetArguments, &GetArguments::urls>,
           .text = "",
           .isRequired = true},
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
               "for every link the text as it stands in the page, a NUL byte, the absolute URL, a NUL byte; "
               "the bytes as they are, for programs",
           .example = "links --null http://www.example.org/ | xargs -0 -n 2 echo"},
    Option{
        .names = "--with-filename",
        .value = "",
        .bind = Fill<LinksArguments, &LinksArguments::withFilename>,
        .text = "with --null: before each link its FILE, - or URL and a NUL byte",
        .example = "links --url http://www.example.org/ --null --with-filename *.html | xargs -0 -n 3 echo",
        .needs = "--null"},
    kHelp,
    Option{.names = "FILE",
           .value = "",
           .bind = Fill<LinksArguments, &LinksArguments::sources>,
           .text = "",
           .completes = Completes::files,
           .isRequired = true},
};

constexpr std::array kClassifyOptions{
    kHelp,
    Option{.names = "URL",
           .value = "",
           .bind = Fill<ClassifyArguments, &ClassifyArguments::urls>,
           .text = "",
           .isRequired = true},
};

constexpr std::array kCommentOptions{
    Option{.names = "--set",
           .value = "TEXT",
           .bind = Fill<CommentArguments, &CommentArguments::text>,
           .text = "make TEXT the comment of each FILE; an empty TEXT removes it",
           .example = "comment --set \"the first of three\" one.zip"},
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
            "to DIR. Control characters are written as \\xHH; the UUID will be another one",
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

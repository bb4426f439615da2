#include "command/command_line.h"

#include <host/text.h>

#include <stdio.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <sstream>

#include "command/modifier_names.h"
#include "file_steps/visible_text.h"

namespace {

const char* const about =
    to_translate("A contextual menu for files that browses the disk through its submenus.");

const char* const menu_about = to_translate(
    "Pops the contextual menu of the files up and waits until it closes. With --print, "
    "--json,\n--png or --pick nothing is shown, and no display is needed.");

const char* const forms_group = to_translate("Instead of showing the menu, one of");

// Option values that are not part of the request itself.
struct Options {
    std::string at;
    std::string modifiers;
    std::vector<std::string> settings;
    bool print = false;
    bool json = false;
    bool no_resident = false;  // the command that people start has read it already
};

void add_menu(CLI::App& app, MenuRequest& request, Options& options) {
    CLI::App* menu = app.add_subcommand("menu", translated(menu_about));
    menu->add_option("FILE", request.files,
                     translated("The files and folders that the menu is for"))
        ->type_name("")
        ->required();
    menu->add_option("--at", options.at,
                     translated("Pop up here and not at the pointer, in pixels from the screen's "
                                "upper left corner"))
        ->type_name("X,Y");
    menu->add_flag("--print", options.print, translated("Write the menu as text"))
        ->group(translated(forms_group));
    menu->add_flag("--json", options.json, translated("Write the menu as JSON"))
        ->group(translated(forms_group));
    menu->add_option("--png", request.picture, translated("Save a picture of the open menu"))
        ->type_name("FILE")
        ->group(translated(forms_group));
    menu->add_option("--pick", request.pick_titles,
                     translated("Pick the item of this title; once for each level"))
        ->type_name("TITLE")
        ->allow_extra_args(false)
        ->group(translated(forms_group));
    menu->add_flag(
        "--replace", request.replace,
        translated("With --pick: replace files of the same names; else they are skipped"));
    menu->add_option("--depth", request.depth,
                     translated("With --print and --json: how many levels of submenus to open (0)"))
        ->type_name("N")
        ->check(CLI::Range(0, 1000000));
    menu->add_option(
            "--open", request.open_titles,
            translated("With --png: hold the submenu of this title open; once for each level"))
        ->type_name("TITLE")
        ->allow_extra_args(false);
    menu->add_flag(
        "--no-resident", options.no_resident,
        translated("Show the menu from this process, without the program that stays for the next"));
    menu->add_option("--modifiers", options.modifiers,
                     translated("Keys to hold down: shift, option, command, control"))
        ->type_name("KEY,...");
    menu->add_option("--setting", options.settings,
                     translated("Override a setting for this run alone"))
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
}

bool takes_values(SettingsVerb verb) {
    return verb == SettingsVerb::set || verb == SettingsVerb::add || verb == SettingsVerb::remove;
}

void add_settings(CLI::App& app, SettingsRequest& request) {
    CLI::App* settings = app.add_subcommand(
        "settings",
        translated("Shows and changes Delvio's settings; without a command, in a window."));
    settings->require_subcommand(0, 1);
    const auto verb = [&](const char* name, const char* meaning, SettingsVerb value) {
        CLI::App* sub = settings->add_subcommand(name, meaning);
        sub->callback([&request, value, sub] {
            request.verb = value;
            if (takes_values(value)) request.words = sub->remaining();
        });
        return sub;
    };
    verb("list", translated("Lists every setting: its value, default and meaning"),
         SettingsVerb::list)
        ->add_flag("--json", request.json, translated("Write the list as JSON"));
    verb("get", translated("Prints the value of a setting that is in effect"), SettingsVerb::get)
        ->add_option("KEY", request.words)
        ->required()
        ->expected(1);
    // Values may begin with a minus sign: nothing after the key is an option.
    CLI::App* set =
        verb("set", translated("Changes a setting: set KEY VALUE..."), SettingsVerb::set);
    set->footer(
        translated("Several values are for a setting that is a list: set folders /srv - /home"));
    set->prefix_command();
    verb("add", translated("Adds entries to a list: add KEY VALUE..."), SettingsVerb::add)
        ->footer(translated("For example: add folders ~/Documents"))
        ->prefix_command();
    verb("remove", translated("Removes entries from a list: remove KEY VALUE..."),
         SettingsVerb::remove)
        ->footer(translated("For example: remove folders ~/Documents"))
        ->prefix_command();
    CLI::App* reset =
        verb("reset", translated("Gives settings their defaults back"), SettingsVerb::reset);
    reset->add_option("KEY", request.words);
    reset->add_flag("--all", request.all, translated("Every setting"));
}

void add_install(CLI::App& app, InstallRequest& request) {
    const auto verb = [&](const char* name, const char* meaning, bool remove) {
        CLI::App* sub = app.add_subcommand(name, meaning);
        sub->add_option("NAME", request.program, translated("The file manager"))
            ->type_name("")
            ->check(CLI::IsMember({"caja", "dolphin", "gworkspace", "nautilus", "nemo", "pcmanfm",
                                   "pcmanfm-qt", "thunar"}));
        sub->callback([&request, remove] { request.remove = remove; });
        return sub;
    };
    verb("install", translated("Puts Delvio into a file manager's contextual menus."), false)
        ->add_flag("--list", request.list,
                   translated("Show the file managers, and which have Delvio"));
    verb("uninstall", translated("Takes it out again."), true);
}

int misused(CommandLine& line, const std::string& problem) {
    const bool settings = line.command == CommandLine::settings;
    const bool menu = line.command == CommandLine::menu;
    const char* const help = settings ? "settings --help" : menu ? "menu --help" : "--help";
    complain_about_usage(translated("%s; see delvio %s", {problem, help}));
    line.command = CommandLine::finished;
    return line.status = exit_misused;
}

bool read_point(const std::string& text, MenuRequest& request) {
    const char* const end = text.data() + text.size();
    const auto x = std::from_chars(text.data(), end, request.x);
    if (x.ec != std::errc() || x.ptr == end || *x.ptr != ',') return false;
    const auto y = std::from_chars(x.ptr + 1, end, request.y);
    return request.has_point = y.ec == std::errc() && y.ptr == end;
}

MenuForm form_of(const MenuRequest& request, const Options& options) {
    if (options.print) return MenuForm::text;
    if (options.json) return MenuForm::json;
    if (!request.picture.empty()) return MenuForm::picture;
    return request.pick_titles.empty() ? MenuForm::shown : MenuForm::pick;
}

bool given(const CLI::App& app, const char* option) { return app.count(option) > 0; }

// Checks rules that CLI11 cannot express. Returns the problem, or an empty string.
std::string check_menu(const CLI::App& app, MenuRequest& request, const Options& options) {
    if (given(app, "--png") && request.picture.empty())
        return translated("--png takes the name of a file");
    if (given(app, "--at") && options.at.empty())
        return translated("--at takes X,Y, for example 200,150");
    request.form = form_of(request, options);
    const int forms =
        options.print + options.json + !request.picture.empty() + !request.pick_titles.empty();
    if (forms > 1) return translated("take one of --print, --json, --png and --pick");
    const bool written = request.form == MenuForm::text || request.form == MenuForm::json;
    if (given(app, "--depth") && !written) return translated("--depth needs --print or --json");
    if (request.replace && request.form != MenuForm::pick)
        return translated("--replace needs --pick");
    if (!request.open_titles.empty() && request.form != MenuForm::picture) {
        return translated("--open needs --png");
    }
    if (!options.at.empty() && !read_point(options.at, request)) {
        return translated("--at takes X,Y, for example 200,150");
    }
    if (!parse_modifiers(options.modifiers, &request.modifiers)) {
        return translated("--modifiers takes shift, option, command or control, joined by commas");
    }
    for (const std::string& setting : options.settings) {
        const size_t equals = setting.find('=');
        if (equals == std::string::npos) return translated("--setting takes KEY=VALUE");
        request.settings.emplace_back(setting.substr(0, equals), setting.substr(equals + 1));
    }
    return {};
}

std::string check_settings(const SettingsRequest& request) {
    if (takes_values(request.verb) && request.words.size() < 2) {
        const char* const name = request.verb == SettingsVerb::set   ? "set"
                                 : request.verb == SettingsVerb::add ? "add"
                                                                     : "remove";
        return translated("settings %s takes a key and a value", {name});
    }
    const bool reset = request.verb == SettingsVerb::reset;
    if (reset && request.words.empty() != request.all) {
        return translated("settings reset takes either keys or --all");
    }
    return {};
}

std::string check_install(const InstallRequest& request) {
    if (request.list && !request.program.empty())
        return translated("install takes a name or --list");
    if (request.list || !request.program.empty()) return {};
    return request.remove ? translated("uninstall takes the name of a file manager")
                          : translated("install takes the name of a file manager, or --list");
}

void set_up(CLI::App& app) {
    app.name("delvio");
    // Before the first option and subcommand, which take these over.
    app.option_defaults()->group(translated("Options"));
    app.group(translated("Subcommands"));
    app.set_help_flag("-h,--help", translated("Print this help message and exit"));
    for (const char* label :
         {to_translate("Usage"), to_translate("Positionals"), to_translate("OPTIONS"),
          to_translate("SUBCOMMAND"), to_translate("REQUIRED")}) {
        app.get_formatter()->label(label, translated(label));
    }
    app.set_version_flag("--version", "delvio " DELVIO_VERSION, translated("Print the version"));
    app.require_subcommand(0, 1);
    app.failure_message([](const CLI::App*, const CLI::Error&) { return std::string(); });
}

// The words at the places %s of a format that the text was made from; empty if it was not.
std::vector<std::string> words_at_places(std::string_view format, std::string_view text) {
    std::vector<std::string> words;
    size_t place = format.find("%s");
    if (!text.starts_with(format.substr(0, place))) return {};
    text.remove_prefix(place);
    while (place != format.npos) {
        const size_t next = format.find("%s", place + 2);
        const std::string_view after = format.substr(place + 2, next - place - 2);
        const size_t end = next == format.npos ? text.size() - after.size() : text.find(after);
        if (text.size() < after.size() || end > text.size() ||
            !text.substr(end).starts_with(after)) {
            return {};
        }
        words.emplace_back(text.substr(0, end));
        text.remove_prefix(end + after.size());
        place = next;
    }
    return words;
}

// What CLI11 says about wrong arguments, as far as its sentences are known.
std::string in_users_language(const std::string& problem) {
    for (const char* known : {to_translate("The following argument was not expected: %s"),
                              to_translate("The following arguments were not expected: %s"),
                              to_translate("%s: 1 required %s missing"),
                              to_translate("%s: Value %s not in range %s to %s"),
                              to_translate("%s: %s not in {%s}"), to_translate("%s is required")}) {
        std::vector<std::string> words = words_at_places(known, problem);
        if (words.empty()) continue;
        words.resize(4);
        return translated(known, {words[0], words[1], words[2], words[3]});
    }
    return problem;
}

// A subcommand gets its help flag before it gets the name of the group.
void group_help_flags(CLI::App* app) {
    app->get_help_ptr()->group(translated("Options"));
    for (CLI::App* sub : app->get_subcommands([](CLI::App*) { return true; }))
        group_help_flags(sub);
}

CommandLine::Command command_of(const CLI::App& app) {
    if (app.got_subcommand("menu")) return CommandLine::menu;
    if (app.got_subcommand("settings")) return CommandLine::settings;
    if (app.got_subcommand("undo")) return CommandLine::undo;
    if (app.got_subcommand("install") || app.got_subcommand("uninstall")) {
        return CommandLine::install;
    }
    return CommandLine::finished;
}

std::string check(const CLI::App& app, CommandLine& line, const Options& options) {
    if (line.command == CommandLine::finished) {
        return translated("say what to do: delvio menu, undo, settings, install or uninstall");
    }
    if (line.command == CommandLine::undo) return {};
    if (line.command == CommandLine::install) return check_install(line.install_request);
    if (line.command == CommandLine::settings) {
        return check_settings(line.settings_request);
    }
    return check_menu(*app.get_subcommand("menu"), line.menu_request, options);
}

}  // namespace

CommandLine read_command_line(int argc, char** argv) {
    CommandLine line;
    Options options;
    CLI::App app(translated(about));
    set_up(app);
    add_menu(app, line.menu_request, options);
    add_settings(app, line.settings_request);
    add_install(app, line.install_request);
    app.add_subcommand("undo",
                       translated("Undoes the last move, copy or alias that Delvio made itself."));
    try {
        group_help_flags(&app);
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        std::ostringstream text;
        app.exit(asked, text, text);
        fputs(text.str().c_str(), stdout);
        return line;
    } catch (const CLI::Error& error) {
        line.command = command_of(app);
        misused(line, in_users_language(error.what()));
        return line;
    }
    line.command = command_of(app);
    const std::string problem = check(app, line, options);
    if (!problem.empty()) misused(line, problem);
    return line;
}

void complain_about_usage(const std::string& text) {
    fprintf(stderr, "delvio: %s\n", operations::visible_text(text).c_str());
}

// What the user asked for, read from the command line.
#pragma once

#include <string>
#include <utility>
#include <vector>

// Exit statuses.
enum : int { exit_done = 0, exit_failed = 1, exit_misused = 2, exit_skipped = 3 };

enum class MenuForm { shown, text, json, picture, pick };

struct MenuRequest {
    MenuForm form = MenuForm::shown;
    std::vector<std::string> files;  // absolute paths
    bool has_point = false;
    int x = 0, y = 0;  // pixels from the screen's upper left corner
    int depth = 0;
    std::string picture;
    std::vector<std::string> open_titles;
    std::vector<std::string> pick_titles;
    bool replace = false;         // replace files of the same names
    unsigned long modifiers = 0;  // AppKit's bits
    std::vector<std::pair<std::string, std::string>> settings;
};

enum class SettingsVerb { window, list, get, set, add, remove, reset };

struct SettingsRequest {
    SettingsVerb verb = SettingsVerb::window;
    bool json = false;
    bool all = false;
    std::vector<std::string> words;  // the key or keys, then the value's words
};

struct InstallRequest {
    bool remove = false;
    bool list = false;
    std::string program;  // empty with `list`
};

struct CommandLine {
    enum Command { finished, menu, settings, undo, install } command = finished;
    int status = exit_done;  // for `finished`: after help, or after a line about wrong use
    MenuRequest menu_request;
    SettingsRequest settings_request;
    InstallRequest install_request;
};

// Reads the arguments. Where due, prints help, the version, or one line about the mistake on
// standard error.
CommandLine read_command_line(int argc, char** argv);

// Prints one line on standard error: "delvio: " and the text.
void complain_about_usage(const std::string& text);

// The items above the host's own actions: the user's folders, undo, and the settings. Main thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

using HostAction = std::function<std::string(const std::vector<std::string>&)>;

// An item of the host. Without a title it is a separator. The action takes the menu's files, and
// returns an empty string, or one line that says why it failed.
struct HostItem {
    std::string title;  // UTF-8
    HostAction action;
};

// How the host does what two of the items are for. Both return what HostAction returns.
struct FirstActions {
    std::string (*undo)();
    std::string (*open_settings)();
};

// The items for these files. Titles for people are in their language.
std::vector<HostItem> first_items(const std::vector<std::string>& files, bool for_people,
                                  const FirstActions& actions);

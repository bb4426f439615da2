// Changes to a setting that is a list of paths.
#pragma once

#include <string>
#include <vector>

// An entry that stands for a line between its neighbours.
inline constexpr const char* separator_entry = "-";

// The path without slashes at its end, which say nothing more.
std::string entry_of_path(const std::string& path);

bool list_has(const std::vector<std::string>& list, const std::string& entry);
// Adds the entry at the end. False when the list has it already; separators may be repeated.
bool add_entry(std::vector<std::string>* list, const std::string& entry);
// Removes each entry that is the same. False when there is none.
bool remove_entry(std::vector<std::string>* list, const std::string& entry);

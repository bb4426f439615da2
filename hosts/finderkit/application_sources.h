// Where applications are installed, and which are there.
#pragma once

#include <map>
#include <string>
#include <vector>

struct ApplicationSources {
    std::map<std::string, std::string> entries;  // paths of desktop entries, by identifier
    std::map<std::string, std::string> bundles;  // paths of ".app" folders, by name
    std::vector<std::string> folders;            // all folders that were searched
};

// One line that names the places where applications are searched. When it changes, the search must
// be repeated.
std::string describe_application_sources();

// Finds all entries and bundles; if several have one name, the first, in the order of the desktop.
ApplicationSources find_application_sources();

// Whether the bundle is a visible program that declares the files it opens. *name receives the
// program's own name.
bool is_offered_bundle(const std::string& path, std::string* name);

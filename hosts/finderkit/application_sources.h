// Where applications are installed, and what is there.
#pragma once

#include <map>
#include <string>
#include <vector>

struct ApplicationSources {
    std::map<std::string, std::string> entries;  // of the desktop, by identifier: where it stands
    std::map<std::string, std::string> bundles;  // ".app" folders, by name
    std::vector<std::string> folders;            // all that were looked into
};

// One line that says where applications are sought. A change of it changes everything.
std::string DescribeApplicationSources();

// All entries and bundles; of several with one name the first, as the desktop finds them.
ApplicationSources FindApplicationSources();

// Whether the bundle is a program that the user sees and that declares files that it opens; *name
// receives its own name.
bool IsOfferedBundle(const std::string& path, std::string* name);

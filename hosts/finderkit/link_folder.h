// A folder of symbolic links that this program makes for itself, with a record inside that lists
// them. The folder is replaced as a whole, in one step. Only links that the record names are
// removed; no link is followed and no subfolder is emptied. Files that others put there stay there.
#pragma once

#include <time.h>

#include <map>
#include <string>

struct LinkRecord {
    std::string origin;                         // one line that names its sources
    std::map<std::string, std::string> stamps;  // of other files, by path
    std::map<std::string, std::string> links;   // the links' targets, by their names
};

// Reads the record of the folder at `path`, and when the folder was made. False when the folder
// does not exist, was not made by this program and user, or has lost one of its links.
bool read_link_folder(const std::string& path, LinkRecord* record, time_t* made_at);

// Replaces the folder at `path` by a new one with these links and this record. False, with
// everything as it was, when the path holds something that this program has not made, or the new
// folder cannot be written. Paths and names with line breaks are left out.
bool make_link_folder(const std::string& path, const LinkRecord& record);

// A folder of symbolic links that this program makes for itself, with a record inside of what it
// has put there. It is replaced as a whole, in one step; only links that the record names are
// removed, and nothing is followed or emptied. What somebody else puts there stays there.
#pragma once

#include <time.h>

#include <map>
#include <string>

struct LinkRecord {
    std::string origin;                         // one line that says what it was made from
    std::map<std::string, std::string> stamps;  // of other files, by path
    std::map<std::string, std::string> links;   // the links' targets, by their names
};

// What the folder at `path` was made from, and when. False when it is not there, was not made by
// this program and user, or one of its links is gone.
bool ReadLinkFolder(const std::string& path, LinkRecord* record, time_t* made_at);

// Puts a new folder with these links and this record in the place of the one at `path`. False,
// with everything as it was, when something stands there that this program has not made, or it
// cannot be written. Paths and names with line breaks are left out.
bool MakeLinkFolder(const std::string& path, const LinkRecord& record);

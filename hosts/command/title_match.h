// Finding an item by the title that the user gave.
#pragma once

#include <string>
#include <vector>

// The index of the title: of the first that is the same, else of the only one that is the same
// without regard to case (of ASCII letters). -1 when there is none; then *problem says so in one
// line and names titles that come close.
int MatchTitle(const std::string& wanted, const std::vector<std::string>& titles,
               std::string* problem);

// Finds an item by the title that the user gave.
#pragma once

#include <string>
#include <vector>

// The index of the first identical title, else of the only title that is equal without regard to
// ASCII case. -1 when there is none; then *problem says so in one line and names similar titles.
int match_title(const std::string& wanted, const std::vector<std::string>& titles,
                std::string* problem);

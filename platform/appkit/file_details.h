// What a line below a picture says about its file. Main thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct FileDetails {
    std::string name;
    std::vector<std::string> rest;  // kind, size and date; empty when the file does not answer
};

FileDetails details_of_file(const std::string& path);

// The rest without as many of its last facts as it takes until it fits; empty when no fact fits.
std::vector<std::string> rest_that_fits(
    std::vector<std::string> rest,
    const std::function<bool(const std::vector<std::string>&)>& fits);

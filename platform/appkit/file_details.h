// What a line below a picture says about its file. Main thread.
#pragma once

#include <functional>
#include <string>

struct FileDetails {
    std::string name;
    std::string rest;  // kind, size and date; empty when the file does not answer
};

FileDetails details_of_file(const std::string& path);

// The rest without as many of its last parts as it takes until it fits; empty when no part fits.
std::string rest_that_fits(std::string rest, const std::function<bool(const std::string&)>& fits);

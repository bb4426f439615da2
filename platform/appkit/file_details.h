// What a line below a picture says about its file. Main thread.
#pragma once

#include <string>

struct FileDetails {
    std::string name;
    std::string rest;  // kind, size and date; empty when the file does not answer
};

FileDetails details_of_file(const std::string& path);

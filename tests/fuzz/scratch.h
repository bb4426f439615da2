// A folder for the files of a target, in the temporary folder that run_isolated gives it.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "require.h"

namespace fuzz {

// The same folder at each call.
inline const std::string& scratch() {
    static const std::string& folder = *[] {
        auto* path = new std::string(std::string(getenv("TMPDIR") ? getenv("TMPDIR") : "/tmp") +
                                     "/fuzz.XXXXXX");
        require(mkdtemp(path->data()), "no folder");
        return path;
    }();
    return folder;
}

inline void write_file(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    require(file.good(), "not written");
}

}  // namespace fuzz

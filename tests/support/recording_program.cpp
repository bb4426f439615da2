#include "support/recording_program.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace test {

namespace {

const char separator = '\036';  // stands in no name of a test

}  // namespace

RecordingProgram::RecordingProgram(const std::vector<std::string>& types,
                                   const std::string& field) {
    const fs::path data = getenv("XDG_DATA_HOME"), config = getenv("XDG_CONFIG_HOME");
    record_ = data / "opened";
    fs::create_directories(data / "applications");
    const std::string script = data / "record";
    // One write for a start, so that a reader sees all of its arguments or none.
    std::ofstream(script) << "#!/bin/sh\nprintf '%s\\036' \"$@\" >>'" << record_ << "'\n";
    chmod(script.c_str(), 0755);
    std::string list, defaults;
    for (const std::string& type : types) {
        list += type + ";";
        defaults += type + "=record.desktop\n";
    }
    std::ofstream(data / "applications/record.desktop")
        << "[Desktop Entry]\nType=Application\nName=Record\nExec=" << script << " " << field
        << "\nMimeType=" << list << "\n";
    std::ofstream(config / "mimeapps.list") << "[Default Applications]\n" << defaults;
    forget();
}

std::vector<std::string> RecordingProgram::opened() const {
    std::vector<std::string> arguments;
    const std::string text = read_file(record_);
    for (size_t begin = 0, end; (end = text.find(separator, begin)) != std::string::npos;
         begin = end + 1) {
        arguments.push_back(text.substr(begin, end - begin));
    }
    return arguments;
}

std::vector<std::string> RecordingProgram::wait() const {
    for (int turn = 0; turn < 1000 && opened().empty(); turn++) usleep(10000);
    return opened();
}

void RecordingProgram::forget() { fs::remove(record_); }

}  // namespace test

#include "support/recording_program.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace test {

namespace {

const char separator = '\036';  // occurs in no name of a test

}  // namespace

RecordingProgram::RecordingProgram(const std::vector<std::string>& types,
                                   const std::string& field) {
    const fs::path data = getenv("XDG_DATA_HOME"), config = getenv("XDG_CONFIG_HOME");
    script_ = data / "record";
    record_ = data / "opened";
    folder_record_ = data / "opened-in";
    descriptors_record_ = data / "opened-with";
    environment_record_ = data / "opened-among";
    fs::create_directories(data / "applications");
    // The arguments come last and in one write, so that a reader who sees one of them can read
    // everything.
    std::ofstream(script_) << "#!/bin/sh\npwd >'" << folder_record_ << "'\nls /proc/$$/fd >'"
                           << descriptors_record_ << "'\nenv >'" << environment_record_
                           << "'\nprintf '%s\\036' \"$@\" >>'" << record_ << "'\n";
    chmod(script_.c_str(), 0755);
    std::string list, defaults;
    for (const std::string& type : types) {
        list += type + ";";
        defaults += type + "=record.desktop\n";
    }
    std::ofstream(data / "applications/record.desktop")
        << "[Desktop Entry]\nType=Application\nName=Record\nExec=" << script_ << " " << field
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
    for (int turn = 0; turn < 6000 && opened().empty(); turn++) usleep(10000);
    return opened();
}

std::string RecordingProgram::working_folder() const {
    const std::string text = read_file(folder_record_);
    return text.substr(0, text.rfind('\n'));
}

std::set<int> RecordingProgram::descriptors() const {
    std::istringstream text(read_file(descriptors_record_));
    std::set<int> numbers;
    for (int number; text >> number;) numbers.insert(number);
    return numbers;
}

std::set<std::string> RecordingProgram::environment() const {
    std::istringstream text(read_file(environment_record_));
    std::set<std::string> variables;
    for (std::string line; std::getline(text, line);) variables.insert(line);
    return variables;
}

void RecordingProgram::forget() {
    for (const auto* file :
         {&record_, &folder_record_, &descriptors_record_, &environment_record_}) {
        fs::remove(*file);
    }
}

}  // namespace test

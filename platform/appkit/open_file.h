// Opens files with the user's programs, as the desktop has them registered. Nothing is waited for:
// the programs run on their own, in a session of their own, from the user's home folder, with none
// of our descriptors. Paths are bytes as the file system has them. Main thread.
#pragma once

#include <string>
#include <vector>

// Opens a file or folder with the default program of its type; a .desktop file of an application
// starts the application. An executable text is shown, not run. False if the file does not exist,
// no program is registered for it, or the program could not be started.
bool open_with_default_program(const std::string& path);

// Starts a program with these arguments. False if it could not be started.
bool start_program(const std::string& program, const std::vector<std::string>& arguments);

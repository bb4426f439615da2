// Opens files with the user's default programs, as the desktop has them registered. Main thread.
#pragma once

#include <string>

// Opens a file or folder with the default program of its type. A .desktop file starts its
// application when it is one of the desktop's own or executable; otherwise it is opened as a text.
// An executable text is shown, not run. False, with *reason, when the file does not exist, no
// program is registered for it, or the program could not be started. The path is bytes as the file
// system has them.
bool open_with_default_program(const std::string& path, std::string* reason);

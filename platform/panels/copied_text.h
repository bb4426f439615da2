// The text that is copied from one program and pasted into another. UTF-8. Main thread.
#pragma once

#include <string>

void copy_text(const std::string& text);
// Empty if something else than a text has been copied.
std::string copied_text();

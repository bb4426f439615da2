// The program that shows a notice with an Undo button, and waits for it. Main thread.
#pragma once

#include <string>

struct NoticeWords {
    std::string operation;      // its name, for the undo
    std::string summary, body;  // UTF-8
};

// Returns the exit status when the notice has gone, or the undo has ended.
int run_notice_keeper(char* program, const NoticeWords& words);

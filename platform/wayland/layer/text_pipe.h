// Texts for programs that read them from a pipe.
#pragma once

#include <string>

// Writes the text and closes `out`. A reader that has gone away, or that reads nothing for some
// seconds, gets no more of it.
void give_text(int out, const std::string& text);

// The question to the session whether assistive technology is active. Main thread.
#pragma once

#include <functional>
#include <string>

// Asks without waiting, over a connection of its own that is closed before `answer` is called: with
// the address of the bus of assistive technology, or with an empty text when none is active. A
// silent session bus never answers. Nothing is started. Made and answered in the thread's context.
void ask_for_readers(const std::function<void(const std::string& address)>& answer);

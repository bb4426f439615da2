// Puts the thread of the control-free popup under a test's control: the test decides when the delay
// has passed, and sees when the thread waits for the next press.
#pragma once

#include <sys/types.h>

namespace test {

class PopupThread {
  public:
    // The thread that `start` starts.
    static void find(void (*start)());

    // Whether the thread is in the delay after a press, and the length of that delay in
    // microseconds.
    static bool is_in_delay();
    static useconds_t asked_delay();
    static void let_delay_pass();

    // The last pause that was shorter than a delay.
    static useconds_t asked_pause();

    // How often the thread has started to wait for a press, and how often it was woken.
    static int rests();
    static int wakings();
    // Whether the thread waits for a press without a time limit: only a press can wake it.
    static bool sleeps_without_limit();
};

}  // namespace test

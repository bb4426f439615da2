// The thread of the control-free popup under a test's control: its delay passes when the test says
// so, and the test sees when it waits for the next press.
#pragma once

#include <sys/types.h>

namespace test {

class PopupThread {
  public:
    // The thread that `start` starts.
    static void find(void (*start)());

    // Whether the thread is in the delay after a press, and how long it asked for, in microseconds.
    static bool is_in_delay();
    static useconds_t asked_delay();
    static void let_delay_pass();

    // The last pause that was shorter than a delay.
    static useconds_t asked_pause();

    // How often it has come to wait for a press, and how often it was woken from that.
    static int rests();
    static int wakings();
    // Whether it waits for a press with no limit of time: nothing will wake it but a press.
    static bool sleeps_without_limit();
};

}  // namespace test

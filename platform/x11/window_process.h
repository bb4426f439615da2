// Which process a window belongs to: one policy for all who ask. Main thread.
//
// 1. A window on whose WM_CLIENT_MACHINE another machine stands has none: the numbers of that
//    machine's processes mean nothing here.
// 2. Else the process that the X server sees at the other end of the window's connection
// (X-Resource
//    1.2), if it runs. No program can pretend to be another one to the server, and a program in a
//    container knows only the number that it has in there.
// 3. Else, where the server sees none, the process that the window itself names (_NET_WM_PID).
#pragma once

#include <sys/types.h>
#include <xcb/res.h>

#include "x11/window_connection.h"
#include "x11/window_questions.h"

// Sent when it is made, answered when the answer is read.
class process_question_t {
  public:
    process_question_t(const window_connection_t& to, xcb_window_t window);
    ~process_question_t();
    process_question_t(const process_question_t&) = delete;
    process_question_t& operator=(const process_question_t&) = delete;

    // 0 when it is not known, or runs on another machine. To be read once.
    pid_t answer() const;

  private:
    pid_t seen_by_server() const;

    const window_connection_t& to_;
    property_question_t machine_, named_;
    mutable xcb_res_query_client_ids_cookie_t seen_ = {};
};

// The process of the active window. 0 when no window is active, its process is not known or on
// another machine, or there is no display.
pid_t active_process();

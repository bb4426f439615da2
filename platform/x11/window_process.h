// Which process a window belongs to, by one policy for all callers. Main thread.
//
// 1. A window whose WM_CLIENT_MACHINE names another machine has no process here: the process
//    numbers of that machine mean nothing on this one.
// 2. Else it is the process that the X server sees at the other end of the window's connection
//    (by X-Resource 1.2), if that process runs. No program can pretend to the server to be another
//    one, and a program in a container knows only its number inside the container.
// 3. Else, where the server sees none, it is the process that the window itself names
//    (_NET_WM_PID).
#pragma once

#include <sys/types.h>
#include <xcb/res.h>

#include "x11/window_connection.h"
#include "x11/window_questions.h"

// The question is sent when it is made; answer() waits for the reply.
class ProcessQuestion {
  public:
    ProcessQuestion(const WindowConnection& to, xcb_window_t window);
    ~ProcessQuestion();
    ProcessQuestion(const ProcessQuestion&) = delete;
    ProcessQuestion& operator=(const ProcessQuestion&) = delete;

    // 0 when the process is not known or runs on another machine. To be called once.
    pid_t answer() const;

  private:
    pid_t seen_by_server() const;

    const WindowConnection& to_;
    PropertyQuestion machine_, named_;
    mutable xcb_res_query_client_ids_cookie_t seen_ = {};
};

// The process of the active window. 0 when no window is active, when its process is not known or
// runs on another machine, and without a display.
pid_t active_process();

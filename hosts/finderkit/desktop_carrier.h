// File operations by the desktop's file manager, over D-Bus: the interfaces of Thunar and Nautilus.
#pragma once

#include <memory>

#include "file_steps/request.h"

// A carrier that hands moves, copies and trashing to a file manager: a running one, else one that
// the bus can start; in both cases the user's default for folders first. The file manager shows its
// own windows, asks its own questions and does not report when it is done: a source that it has
// accepted counts as done, without a target. `other` gets the requests that the file manager has no
// call for (aliases, and replacing without a question), and all requests where there is no such
// file manager.
std::unique_ptr<operations::Carrier> make_desktop_carrier(
    std::unique_ptr<operations::Carrier> other);

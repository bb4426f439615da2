// File operations by the desktop's file manager, over D-Bus: Thunar's and Nautilus's interfaces.
#pragma once

#include <memory>

#include "file_steps/request.h"

// A carrier that hands moving, copying and trashing to the file manager: one that runs, else one
// that the bus can start, the user's own for folders before others. It has its own windows, asks
// its own questions and does not tell when it is done: a source that it has taken over counts as
// done, without a target. Given to `other` is what it has no way to ask for (aliases, and replacing
// without a further question), and everything where there is no such file manager.
std::unique_ptr<operations::Carrier> MakeDesktopCarrier(std::unique_ptr<operations::Carrier> other);

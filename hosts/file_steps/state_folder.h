// Where the engine keeps what it must know after its process has ended.
#pragma once

#include <string>

namespace operations {

// $XDG_STATE_HOME/delvio, by default ~/.local/state/delvio. Not made here.
std::string StateFolder();

}  // namespace operations

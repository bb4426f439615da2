// Where the engine keeps the files that must outlive its process.
#pragma once

#include <string>

namespace operations {

// $XDG_STATE_HOME/delvio, by default ~/.local/state/delvio. This function does not make it.
std::string default_state_folder();

}  // namespace operations

// The client's side of a call. Main thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace resident {

// Lets the host of this user, display and session show the menu, starting one where there is none,
// and waits until it is done. Null when the full program has to do it. While the menu is open, a
// signal that ends programs closes it first.
std::optional<int> run_by_host(const std::vector<std::string>& arguments,
                               const std::string& program);

}  // namespace resident

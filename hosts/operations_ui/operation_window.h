// The windows of a file operation: its progress with a Cancel button once it has taken half a
// second, a panel for each conflict, and at the end one for what failed. Main thread.
#pragma once

#include <functional>
#include <memory>

#include "file_steps/request.h"

namespace operations {

// Whether the first answer is meant for all names that are taken, unless the user says otherwise.
enum class Asks { Each, Once };

// For one request, which is given to a carrier with it; there must be an application object.
// `ended` is sent from the run loop, after the windows have closed; it may be empty.
std::shared_ptr<Observer> MakeWindowObserver(const Request& request,
                                             std::function<void(const Report&)> ended,
                                             Asks asks = Asks::Each);

// Whether requests with such observers have not ended.
bool WindowsAreNeeded();

// Handles the application's events until every such request has ended. For a host that is about to
// end and has no event loop of its own.
void RunUntilOperationsEnd();

}  // namespace operations

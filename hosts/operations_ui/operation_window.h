// The windows of a file operation: its progress with a Cancel button after half a second, a panel
// for each conflict, and a panel for the failures at the end. Main thread.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "file_steps/request.h"

namespace operations {

// Whether the first answer applies to all conflicts, unless the user says otherwise.
enum class Asks { Each, Once };

// An observer for one request, to give to a carrier with that request. There must be an application
// object. `ended` is called from the run loop, after the windows have closed; it may be empty.
std::shared_ptr<Observer> make_window_observer(const Request& request,
                                               std::function<void(const Report&)> ended,
                                               Asks asks = Asks::Each);

// The same for work that is no request; `title` says what is done, in UTF-8.
std::shared_ptr<Observer> make_window_observer(const std::string& title,
                                               std::function<void(const Report&)> ended);

// An alert with the failures of a request; none if nothing failed.
void show_failures(const Report& report);

// Whether a request with such an observer has not ended yet.
bool windows_are_needed();

// Handles the application's events until every such request has ended. For a host that is about to
// exit and has no event loop of its own.
void run_until_operations_end();

}  // namespace operations

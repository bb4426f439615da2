// Which file operations GWorkspace may carry out, and handing them to it. Main thread.
#pragma once

#include <functional>

#include "file_steps/request.h"

// Whether GWorkspace carries the request out correctly. GWorkspace replaces a file by deleting it,
// and Return means yes in its question, so it never gets a taken name. It also never gets a name
// that it misreads, a folder that is to go into itself, or files from several folders, since it
// would ask once for each folder.
bool is_for_gworkspace(const operations::Request& request);

// GWorkspace asks its own questions and shows its own windows. May wait for a click. `begins` is
// called from the run loop when GWorkspace begins; it does not begin when the user says no. False
// if a name was taken while GWorkspace asked: GWorkspace has done nothing then, and does nothing
// further.
bool hand_to_gworkspace(const operations::Request& request, const std::function<void()>& begins);

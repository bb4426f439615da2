// Which file operations GWorkspace is trusted with, and giving them to it. Main thread.
#pragma once

#include <functional>

#include "file_steps/request.h"

// Whether GWorkspace carries it out as asked. It replaces files by deleting them, with Return for
// yes, so it never gets a name that is taken; nor names that it mistakes, a folder that is to go
// into itself, or files of several folders, about each of which it would ask anew.
bool IsForGWorkspace(const operations::Request& request);

// GWorkspace asks, shows and tells whatever there is to ask, show and tell. May wait for a click.
// `begins` is called from the run loop if GWorkspace begins, which it does not when the user says
// no. False if a name was taken while GWorkspace asked: nothing has been done then, and GWorkspace
// does nothing further.
bool HandOver(const operations::Request& request, const std::function<void()>& begins);

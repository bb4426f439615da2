// A last look at what GWorkspace was given, when it begins, which is after its own question. Names
// that were free before it may be taken then; GWorkspace would offer to delete what has them, with
// Return for yes. Main thread.
#pragma once

#include <Foundation/Foundation.h>

#include <functional>

// Has `start` give the order to GWorkspace, which may wait for a click. False if the look said no:
// GWorkspace has done nothing then, and does nothing further. Whatever it does carry out, it
// replaces nothing, and does not ask to.
bool BeginsAfterLook(NSDictionary* order, const std::function<bool()>& look,
                     const std::function<void()>& start);

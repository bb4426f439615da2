// GWorkspace leaves a file out without a word if its name is taken in the very moment in which
// GWorkspace begins. This tells the user. Main thread.
#pragma once

#include <Foundation/Foundation.h>

#include "file_steps/request.h"

// Called when GWorkspace begins with the order. When GWorkspace has ended, an alert names the files
// of the request that it left out because their names are taken.
void tell_what_is_left_out(const operations::Request& request, NSDictionary* order);

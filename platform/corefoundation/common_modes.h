// The run-loop modes that count as common. GNUstep has no common modes of its own, so anything
// for the common modes is added to each of these.
#pragma once

#import <Foundation/Foundation.h>

// The names of the common modes so far, the default mode first. One list a process. Any thread.
NSArray* common_modes(void);

// A last check of an order to GWorkspace when GWorkspace begins with it, which is after its own
// question. Names that were free before the question may be taken by then; GWorkspace would offer
// to delete the files with these names, and Return would mean yes. Main thread.
#pragma once

#include <Foundation/Foundation.h>

#include <functional>

// One of GWorkspace's operations (FileOpInfo) is this notification's object. It is sent after the
// operation has closed its window, for orders that went through the function below.
extern NSString* const operation_has_ended;

@protocol GWorkspaceOperation
- (NSString*)type;
- (NSString*)source;
- (NSString*)destination;
@end

// Calls `start`, which gives the order to GWorkspace and may wait for a click. Calls `look` when
// GWorkspace begins. Returns false if the look said no: GWorkspace has done nothing then, and does
// nothing further. In any case GWorkspace replaces nothing, and does not ask to.
bool begins_after_look(NSDictionary* order, const std::function<bool()>& look,
                       const std::function<void()>& start);

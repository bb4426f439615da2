// The file operations that a Finder is asked for by Apple Event, and who carries them out. Main
// thread.
//
//   move            ("core", "move")   of "----" to "insh"
//   clone           ("core", "clon")   the same
//   create element  ("core", "crel")   of class ("kocl") "alis": aliases of "to  " in "insh"
//   delete          ("core", "delo")   of "----": to the trash
//
// "alrp" is the answer to files of the same names: true replaces them.
#pragma once

#include <Carbon/Carbon.h>

#include <functional>
#include <memory>

#include "file_steps/request.h"

struct FileOperationService {
    std::shared_ptr<operations::Carrier> carrier;
    // Makes an observer for each request.
    std::function<std::shared_ptr<operations::Observer>(const operations::Request&)> observer;
};

// Takes effect with the next event. Without a carrier, events that ask for operations are not
// handled.
void set_file_operation_service(const FileOperationService& service);

// Reads what an event asks for: files by their paths, whether or not they exist; if the destination
// is a link to a folder, that folder. errAEEventNotHandled for an event that is none of these,
// errAECoercionFail where a file of this machine is wanted and something else is given.
OSErr read_file_operation(const AppleEvent* event, operations::Request* request);

// The handler of these events.
OSErr answer_file_operation(const AppleEvent* event, AppleEvent* reply, void* refcon);

// Handles the signals that end the command, and cleans up when it ends.
#pragma once

#include <sys/types.h>

#include <string>

// From now on SIGINT, SIGTERM, SIGHUP and SIGPIPE undo what is registered below and end the process
// with status 128 plus the signal's number. A later call of signal() does not change that. Grabs
// need no undoing: the X server releases them when the process ends.
void catch_exit_signals();

// Register a child to end, and a file and then its folder to remove, at a signal that ends the
// process or at end_child_and_remove_file(). A process of 0 or empty paths remove the registration.
void set_child_to_end(pid_t child);
void set_file_to_remove(const std::string& file, const std::string& folder);
void end_child_and_remove_file();

// While a descriptor is set, the first signal only writes a byte to it, so that an open menu can
// close normally. Two seconds later, or at the next signal, the process ends anyway. -1 removes the
// descriptor.
void set_signal_descriptor(int descriptor);
// The signal that was caught while a descriptor was set, or 0.
int signal_caught();

// For a program that acts for others. A signal that another process has caught is acted on here as
// if it had been caught, but this process does not end; the caller forgets it afterwards.
void act_on_signal(int number);
void forget_acted_signal();
// From now on a broken pipe only fails the write. Programs that are started from here still end.
void outlive_broken_pipes();

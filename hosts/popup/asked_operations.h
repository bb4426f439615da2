// The file operations that the plug-in asks this command for. Main thread.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "command/command_line.h"
#include "file_steps/request.h"

// From now on the command carries out file operations. For a shown menu it shows windows, or asks
// the desktop's file manager if the user has set that; for a pick it asks nobody.
void offer_file_operations(const MenuRequest& request);

// Waits until all operations have ended. Returns the exit status: done, failed, or skipped. Prints
// what was not done on standard error, one line for each file.
int finish_file_operations();

// Whether a user is there to answer questions: the menu is shown.
bool is_user_asked();
// An observer for more work of a shown menu: a signal ends the work like the Cancel button of
// `windows`.
std::shared_ptr<operations::Observer> ended_by_signals(
    std::shared_ptr<operations::Observer> windows);
// finish_file_operations() first does this. Signals belong to the menu until it has closed.
void do_after_menu(std::function<void()> work);
// finish_file_operations() prints the line and returns that the command failed.
void note_problem(const std::string& line);

// Undoes the last operation. For a pick it prints what it did on standard output and returns an
// empty string, or one line that says what prevents it. For a shown menu it returns at once, shows
// its progress if it takes long, and tells at the end.
std::string undo_last_operation();

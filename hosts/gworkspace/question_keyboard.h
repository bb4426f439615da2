// GWorkspace's own questions about the operations that it was given. Main thread.
#pragma once

// From now on each question of GWorkspace gets the keyboard focus when it appears. Without this, on
// a busy machine, the window manager leaves the focus where the menu was, and Return answers
// nothing.
void give_questions_the_keyboard();

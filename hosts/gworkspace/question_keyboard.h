// GWorkspace's own questions about what it was handed. Main thread.
#pragma once

// From now on each question that GWorkspace asks gets the keyboard when it comes up: on a busy
// machine the window manager leaves it where the menu was, and Return answers nothing.
void GiveQuestionsTheKeyboard();

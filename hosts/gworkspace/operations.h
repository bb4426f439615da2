// Moves, copies, links and recycling by GWorkspace itself, with its progress window and its
// questions. Main thread.
#pragma once

// From now on GWorkspace carries out the file operations that Apple Events ask for.
void offer_gworkspace_operations();

// Selecting by typing, in GWorkspace's browser. Main thread.
#pragma once

// In a column without a selection GWorkspace looks for ever for a name that begins with what was
// typed, when none does: an Escape after the one that closes a menu is enough. From now on such a
// search ends at once.
void EndTypeSelections();

// Selecting by typing, in GWorkspace's browser. Main thread.
#pragma once

// In a column without a selection GWorkspace searches forever when no name begins with the typed
// text; an extra Escape after the one that closes a menu is enough. From now on such a search ends
// at once.
void end_type_selections();

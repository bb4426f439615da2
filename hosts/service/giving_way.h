// When an open menu gives way to the next call. Main thread.
#pragma once

// Whether the menu that is open now closes at once when it is cancelled. It does not once it has
// its pick, whose action may take long, nor while a panel is open, which may hold a question.
bool open_menu_gives_way();

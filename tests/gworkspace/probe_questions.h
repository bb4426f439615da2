// What the probe can be asked about GWorkspace's own views. Answers are lines; a place on the
// screen is "left top width height", and nothing while its window is not there yet. Main thread.
//
//   launched              "yes" once it has
//   selection             the paths that GWorkspace's commands are for
//   selected KIND         the paths selected in a view
//   item KIND PATH        where the icon, cell or row of the path stands; KIND is browser, icons,
//                         list, path, shelf, desktop, dock
//   ground KIND           where there is none; of the browser, below the cells of the last column
//   bounds KIND           the view's visible part; of a popup, its button's
//   target KIND [PATH]    "yes" while a drag is over the view, or the icon in it, that takes it
//   stock                 how many of GNUstep's own menus are shown
//   clipboard             the paths on the pasteboard
//   windows               the titles of the windows that are shown
//   close TITLE           closes the windows of this title
//   show KIND             the viewer takes this form (browser, icons, list) and shows its folder
//   frame X Y W H         where the viewer's window is to stand, from the lower left, in front
//   shelve x PATH         puts the path on the shelf
//   open PATH             a viewer of this folder
//   alert                 the text of the panel that waits for an answer
//   question              the same once the panel has the keyboard
//   covering              the titles of the windows that stand over it
//   set_mouse_up          GNUstep without Delvio loses the release of the first click otherwise
//   idle                  "yes" when no panel waits for an answer
//   take_at_start PATH    a file of this name comes to be when GWorkspace's next operation begins
//   quit                  as from the main menu
//   doing                 the methods in progress, the innermost first
//   memory                bytes that are allocated
#pragma once

#include <string>

void take_name_at_start(const std::string& path);

// False for an unknown question.
bool answer_about_views(const std::string& question, const std::string& words, std::string* answer);

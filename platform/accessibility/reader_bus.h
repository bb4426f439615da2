// Whether assistive technology could be there at all. Main thread.
#pragma once

// Whether anything has started the bus of assistive technology in this session. Asks the X server,
// in two trips, and looks for a folder. Desktops start that bus also when nobody uses it.
bool reader_bus_is_there();

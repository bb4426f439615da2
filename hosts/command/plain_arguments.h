// Arguments and environment in any bytes.
#pragma once

// Foundation reads the arguments and the environment as it is loaded, before main, and gives up on
// text that is not in its encoding. Until this is called it therefore sees question marks in place
// of everything that is not ASCII. Sent first of all.
void RestoreArguments();

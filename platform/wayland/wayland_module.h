// The library that speaks to compositors, loaded at the first call.
#pragma once

// A function of the library, by its name; null where the environment names no compositor, where the
// X server is not that compositor's, or without the library.
void* wayland_function(const char* name);

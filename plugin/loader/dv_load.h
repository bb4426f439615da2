// The plug-in's one entry point.
#pragma once

// Whether the plug-in has been installed in this process.
extern int is_loaded;

// Installs the plug-in, once per process and only in the Finder. Always returns 0. Main thread.
extern "C" int dv_load_delvio(void);

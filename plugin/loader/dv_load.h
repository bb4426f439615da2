// The plug-in's one entry.
#pragma once

// Whether the plug-in has been installed in this process.
extern int is_loaded;

// Installs the plug-in, once a process and only in the Finder. Always 0. Main thread.
extern "C" int dv_load_delvio(void);

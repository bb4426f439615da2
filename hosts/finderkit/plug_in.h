// Loads the plug-in's bundle into a Finder-like host. The host knows only the bundle and its entry
// function. Main thread.
#pragma once

#include <string>

// The bundle's path: $DELVIO_BUNDLE; else in `folder`; if `folder` is empty, beside this library,
// as built and as installed. Empty when there is no bundle; then *problem says where it was
// searched.
std::string find_plug_in(std::string* problem, const std::string& folder = "");

// The path of another of Delvio's bundles, beside this library. Empty when there is none; then
// *problem says where it was searched.
std::string find_bundle(const std::string& name, std::string* problem);

// The path of the `delvio` command of the same build or installation. Empty when there is none;
// then *problem says where it was searched.
std::string find_command(std::string* problem);

// Declares this process a Finder ("MACS"), loads the bundle and calls its entry function.
// False when that failed; then *problem says why, in one line.
bool load_plug_in(const std::string& bundle, std::string* problem);

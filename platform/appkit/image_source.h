// The file that a picture shows. Main thread.
#pragma once

#include <string>

@class NSImage;

// The path of the file; empty for a picture that was not made from a file.
std::string source_of_image(NSImage* image);

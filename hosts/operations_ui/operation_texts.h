// What the windows of file operations say. Autoreleased strings. Main thread.
#pragma once

#include <Foundation/Foundation.h>

#include "file_steps/request.h"

namespace operations {

// A name or path as text on one line, with visible escapes for other bytes.
NSString* text_of_name(const std::string& name);
// The last component of the path.
NSString* text_of_last(const std::string& path);

// "Copying 3 items to “Documents”"
NSString* window_title_of(const Request& request);
// "312 of 1,000 items, 12.4 MB of 80 MB"
NSString* detail_of(const Progress& progress);
// From 0 to 1; negative while the fraction is unknown.
double fraction_of(const Progress& progress);

// "“notes.txt” is already in “Documents”."
NSString* question_of(const Conflict& conflict);
// "12.4 MB, changed on 3 May 2024 at 10:12"; without the size for a folder.
NSString* describe_file(const std::string& path);

// For a report with failures: the number of failures, and the reasons, one per line. Nil when
// nothing failed.
NSString* failure_title_of(const Report& report);
NSString* failure_reasons_of(const Report& report);

}  // namespace operations

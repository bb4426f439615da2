// What the windows of file operations say. Autoreleased strings. Main thread.
#pragma once

#include <Foundation/Foundation.h>

#include "file_steps/request.h"

namespace operations {

// A name or path as text on one line, with visible escapes for other bytes.
NSString* TextOfName(const std::string& name);
// The last component of the path.
NSString* TextOfLast(const std::string& path);

// "Copying 3 items to “Documents”"
NSString* TitleOf(const Request& request);
// "312 of 1,000 items, 12.4 MB of 80 MB"
NSString* DetailOf(const Progress& progress);
// From 0 to 1; negative while the fraction is unknown.
double FractionOf(const Progress& progress);

// "“notes.txt” is already in “Documents”."
NSString* QuestionOf(const Conflict& conflict);
// "12.4 MB, changed on 3 May 2024 at 10:12"; without the size for a folder.
NSString* DescribeFile(const std::string& path);

// For a report with failures: the number of failures, and the reasons, one per line. Nil when
// nothing failed.
NSString* FailureTitleOf(const Report& report);
NSString* FailureReasonsOf(const Report& report);

}  // namespace operations

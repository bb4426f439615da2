// The table behind FSRef: which path a reference names, and what was seen there when it was made.
//
// Making a reference looks at the file once. That look answers the questions that usually follow at
// once (what the file is, its name, its Finder information), each question one time. Asking the
// same question again, or after more than a moment, looks anew. Main thread.
#pragma once

#include <Carbon/Files.h>

#include <sys/stat.h>

#include <string>

#include "carbon/finder_information.h"

namespace files {

// The questions that a look at a file may still answer.
enum Question : unsigned {
    ITEM_INFO = 1,
    DISPLAY_NAME = 2,
    CATALOG_INFO = 4,
    PATH = 8,
    ALIAS = 16
};

struct File {
    uint64_t generation;   // 0: never used
    std::string path;      // absolute, without a slash at its end
    uint32_t name_offset;  // of the last component in `path`
    mode_t mode;           // of the entry itself: a symbolic link is not followed
    uint32_t device_major, device_minor;
    int64_t seen_at;      // milliseconds
    bool is_silent;       // its disk does not answer: it must not be asked
    unsigned unanswered;  // questions that the last look may still answer

    // What the answers so far have found out. A new look drops it.
    bool knows_finder_information;
    bool knows_invisible, invisible;
    FinderInformation finder_information;

    const char* name() const { return path.c_str() + name_offset; }
    size_t name_length() const { return path.size() - name_offset; }
    // The folder, with its slash.
    const char* folder() const { return path.c_str(); }
    size_t folder_length() const { return name_offset; }
};

// The file that `ref` names, ready to answer `question`. Null, with *error, when the reference is
// stale or foreign, or the file is gone. Valid until the next reference is made.
File* file_for(const FSRef* ref, Question question, OSErr* error);

// Makes a reference to an absolute path. One look serves `questions`.
OSErr make_reference(const char* path, size_t length, unsigned questions, FSRef* ref, mode_t* mode);

// The path that `ref` names; the file is not looked at. Null when the reference is stale or
// foreign. Valid until the next reference is made.
const std::string* kept_path(const FSRef& ref);

// Makes a new reference to a path that had one before.
OSErr make_reference_again(const std::string& path, FSRef* ref);

// The Mac's result code for what errno says about a path.
OSErr error_from_errno(int code);

}  // namespace files

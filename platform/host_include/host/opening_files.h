// The host's side of opening files with programs. Not a Mac interface: on a Mac the system itself
// tells the user which file could not be opened. Main thread.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// The listener is called at once for each file that the workspace or Launch Services could not
// open. `file` and `program` are paths or names in the file system's bytes; `file` is empty where
// only the program is known, `program` where none was chosen. `reason` is a clause in lower case
// without a full stop.
typedef void (*OpenFailureListener)(const char* file, const char* program, const char* reason);
void set_open_failure_listener(OpenFailureListener listener);
// Calls the listener, for a host that opens files in its own way.
void report_open_failure(const char* file, const char* program, const char* reason);

// The opener is called once for each document that is to be opened with the program that runs, an
// ".app" bundle's: it opens the document here, where otherwise a second process would be started.
// `document` is a path in the file system's bytes.
typedef void (*OwnDocumentOpener)(const char* document);
void set_own_document_opener(OwnDocumentOpener opener);

// How many times this process has tried to open something, with and without success.
unsigned long count_of_openings(void);

// Programs that are started from now on get this variable; a null value takes it away from them.
void set_variable_of_started_programs(const char* name, const char* value);

#ifdef __cplusplus
}
#endif

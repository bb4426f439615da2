// Compares a copy with its state when it was made, or with its source. Any thread.
#pragma once

#include <string>

#include "operations/undo_record.h"

namespace operations {

// Whether the name now belongs to another file, or anything in the copy was changed since it was
// made. True if that cannot be told.
bool is_changed(int folder, const char* name, const CopyState& copy);

// Whether everything in `rest` is also in `whole`, unchanged. `rest` is the remainder of a source
// that was being removed after it was copied.
bool is_remainder_of(int rest_folder, const char* rest, int whole_folder, const char* whole);

}  // namespace operations

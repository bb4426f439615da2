// What has become of something that was copied. Any thread.
#pragma once

#include <string>

#include "operations/undo_record.h"

namespace operations {

// Whether the copy at the name is another thing now, or anything in it was changed since it was
// made. Yes if that cannot be told.
bool IsChanged(int folder, const char* name, const CopyState& copy);

// Whether all that stands at `rest` stands at `whole` as well, unchanged: what is left of something
// that was being taken away after it was copied.
bool IsRestOf(int rest_folder, const char* rest, int whole_folder, const char* whole);

}  // namespace operations

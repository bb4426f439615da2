// What a program does whose memory ends before the toolkit is there.
#pragma once

namespace resident {

// From now on a `new` that gets no memory ends the process, with a line on standard error.
void end_when_memory_ends();

}  // namespace resident

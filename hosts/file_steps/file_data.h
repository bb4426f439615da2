// The bytes of files: copied the cheapest way that the file systems offer, and compared.
#pragma once

#include <stdint.h>

#include <functional>

namespace operations {

// Called after each piece with its size; false ends the copying with ECANCELED.
using PieceDone = std::function<bool(uint64_t)>;

// Copies all of `source` to the new, empty `target`; `size` and `blocks` (of 512 bytes) are the
// expected size of the source. Shares the blocks where the file system can, and keeps holes.
// Returns 0 or an error number; ESTALE when the source turned out to have another size.
int copy_data(int source, int target, uint64_t size, uint64_t blocks, const PieceDone& done);

// Compares the bytes of both files; the target is read as its disk has it. Returns 0 when they are
// the same, EBADMSG when they differ, else the error number.
int compare_data(int source, int target, const PieceDone& done);

}  // namespace operations

// The bytes of files: copied the cheapest way that the file systems offer, and compared.
#pragma once

#include <stdint.h>

#include <functional>

namespace operations {

// Sent after each piece with its size; false ends the copying with ECANCELED.
using PieceDone = std::function<bool(uint64_t)>;

// Copies all of `source` to the new, empty `target`; `size` and `blocks` (of 512 bytes) are what
// the source is known to hold. Shares the blocks where the file system can, keeps holes. Returns
// 0 or an error number; ESTALE when the source turned out to have another size.
int CopyData(int source, int target, uint64_t size, uint64_t blocks, const PieceDone& done);

// Compares what both hold, the target as its disk has it. 0 when they are the same, EBADMSG when
// not, else what went wrong.
int CompareData(int source, int target, const PieceDone& done);

}  // namespace operations

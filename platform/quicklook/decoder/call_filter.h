// The kernel calls that a helper process may still make: a list of what it needs; all others are
// refused. One thread; the filter cannot be removed.
#pragma once

namespace thumbnails {

// For a decoder: threads, memory, reading files and writing to what is open. It can reach no other
// process and share nothing with one; it can change, lock or watch no file. False when the kernel
// refuses the filter.
bool allow_decoder_calls();

// For a thumbnailer program: it may start others, and write where that is allowed. Only when
// `caged`, with processes and files of its own, may it send signals and change modes, times and
// owners: nothing else would protect other processes and the user's files from those calls.
bool allow_program_calls(bool caged);

}  // namespace thumbnails

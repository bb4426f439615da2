// Which calls of the kernel a helper process may still make: a list of what is needed, all else is
// refused. One thread; there is no way back.
#pragma once

namespace thumbnails {

// Threads, memory, reading files and writing to what is open. No other process and nothing shared
// with one; no file is changed, locked or watched. False when the kernel refuses.
bool allow_decoder_calls();

// For a thumbnailer program: it may start others, and write where that is allowed. Only where it is
// `caged`, with processes and files of its own, may it signal, and change modes, times and owners:
// no other means keeps those from other processes and the user's files.
bool allow_program_calls(bool caged);

}  // namespace thumbnails

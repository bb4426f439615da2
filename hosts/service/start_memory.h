// The pages of files that only a program's start has needed.
#pragma once

// Takes the pages of all loaded files that hold no data of this process out of its memory: code,
// fonts, tables. A page that is needed again comes from the kernel's cache. After the start most
// never are, as that runs through code of a hundred libraries.
void give_back_start_memory();

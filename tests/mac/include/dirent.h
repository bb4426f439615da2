// Folders. Names have room for 1023 bytes since inode numbers have 64 bits.
#pragma once

#include <sys/types.h>

extern "C" {

struct dirent {
    uint64_t d_ino;
    uint64_t d_seekoff;
    uint16_t d_reclen;
    uint16_t d_namlen;
    uint8_t d_type;
    char d_name[1024];
};

int scandir(const char* path, struct dirent*** list, int (*select)(const struct dirent*),
            int (*compare)(const struct dirent**, const struct dirent**));
}

#pragma once

#include <sys/types.h>

extern "C" {

struct stat {
    int32_t st_dev;
    mode_t st_mode;
    uint16_t st_nlink;
    uint64_t st_ino;
    uint32_t st_uid;
    uint32_t st_gid;
    off_t st_size;
};

#define S_IFMT 0170000
#define S_IFDIR 0040000
#define S_IFREG 0100000
#define S_ISDIR(mode) (((mode)&S_IFMT) == S_IFDIR)
#define S_ISREG(mode) (((mode)&S_IFMT) == S_IFREG)

int stat(const char* path, struct stat* status);
}

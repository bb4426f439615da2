// What must hold for every input.
#pragma once

#include <stdio.h>
#include <stdlib.h>

namespace fuzz {

inline void require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "fuzz: does not hold: %s\n", what);
    abort();
}

}  // namespace fuzz

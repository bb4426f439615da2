// Scans a folder a few times under valgrind, which counts the instructions: count_scan FOLDER
#include <stdio.h>
#include <valgrind/callgrind.h>

#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

int main(int count, char** arguments) {
    if (count != 2) return 2;
    for (int round = 0; round < 4; round++) {
        CALLGRIND_DUMP_STATS_AT("-");
        dv_tree_t* root = dv_build_tree(arguments[1], 0, 1, 0, 0);
        if (!root || !root->children) return 1;
        if (round == 0) {
            CALLGRIND_DUMP_STATS_AT("scan, the first of a process");
        } else {
            CALLGRIND_DUMP_STATS_AT("scan");
        }
        dv_free_tree(root);
        CALLGRIND_DUMP_STATS_AT("scan, freed");
    }
}

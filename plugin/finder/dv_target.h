// The address that the plug-in's Apple Events go to.
#pragma once

#include <Carbon/Carbon.h>

const OSType dv_finder_signature = 'MACS';

// The address of the Finder, by its signature. The caller disposes of it.
inline OSErr dv_make_finder_address(AEAddressDesc* address) {
    return AECreateDesc(typeApplSignature, &dv_finder_signature, sizeof dv_finder_signature,
                        address);
}

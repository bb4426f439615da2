// The signature that the host has declared for this process.
#pragma once

#include <Carbon/MacTypes.h>

// 0 if none. Any thread.
OSType declared_signature();

// Exchanges a method of the host with one of ours.
#pragma once

#include <objc/objc.h>

// Afterwards a call of `original` runs the implementation of `replacement`, and the other way
// round. With `instance_methods` zero it exchanges class methods. Both methods are also looked up
// in superclasses. A null class or a missing method exchanges nothing.
void MethodSwizzle(Class owner, SEL original, SEL replacement, int instance_methods);

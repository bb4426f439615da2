// Exchanging a method of the host's with one of ours.
#pragma once

#include <objc/objc.h>

// After it, a call of `original` runs the implementation of `replacement` and the other way round.
// `instance_methods` zero: class methods. Both are looked up through superclasses; a null class or
// a missing method exchanges nothing.
void MethodSwizzle(Class owner, SEL original, SEL replacement, int instance_methods);

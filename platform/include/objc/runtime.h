// The Objective-C run time: GNU's, with the one call that needs more care here.
#pragma once

#include_next <objc/runtime.h>

#ifdef __cplusplus
extern "C" {
#endif

// Exchanges two implementations as on the Mac. GNU's own call leaves subclasses with the old
// implementation in their dispatch tables; this one refreshes every class that inherits either.
void MacMethodExchangeImplementations(Method first, Method second);
#define method_exchangeImplementations MacMethodExchangeImplementations

#ifdef __cplusplus
}
#endif

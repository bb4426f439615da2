// What is the same type in one word size alone.
#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>

#include <stdint.h>
#include <stdio.h>

void geometry(NSView* view, CGContextRef context, CGFloat number) {
    // i386-error@+1 {{no matching function for call to 'CGContextFillRect'}}
    CGContextFillRect(context, [view bounds]);
    CGContextFillRect(context, NSRectToCGRect([view bounds]));
    double* precise = nullptr;
    // i386-error@+1 {{incompatible pointer types assigning to 'double *'}}
    precise = &number;
    (void)precise;
}

void integers(NSArray* array, int32_t* plain, uint32_t* bits) {
    // i386-error@+1 {{cannot initialize a variable of type 'SInt32 *'}}
    SInt32* order = plain;
    // i386-error@+1 {{cannot initialize a variable of type 'OptionBits *'}}
    OptionBits* options = bits;
    // x86_64-error@+1 {{cannot initialize a variable of type 'NSInteger *'}}
    NSInteger* index = plain;
    (void)order, (void)options, (void)index;
    // x86_64-error@+1 {{values of type 'NSUInteger' should not be used as format arguments}}
    printf("%d\n", [array count]);
    // i386-error@+1 {{values of type 'OSStatus' should not be used as format arguments}}
    printf("%d\n", FSPathMakeRef(nullptr, nullptr, nullptr));
}

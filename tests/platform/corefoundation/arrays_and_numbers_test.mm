#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

TEST(Arrays, AnArrayIsFoundationsArray) {
    const CFArrayRef array = (CFArrayRef) @[ @"a", @2 ];
    ASSERT_EQ(CFArrayGetCount(array), 2);
    EXPECT_EQ(CFGetTypeID(array), CFArrayGetTypeID());
    EXPECT_EQ(CFGetTypeID(CFArrayGetValueAtIndex(array, 0)), CFStringGetTypeID());
    EXPECT_EQ(CFGetTypeID(CFArrayGetValueAtIndex(array, 1)), CFNumberGetTypeID());
}

TEST(Objects, EachFamilyHasATypeOfItsOwn) {
    EXPECT_NE(CFStringGetTypeID(), CFArrayGetTypeID());
    EXPECT_NE(CFStringGetTypeID(), CFNumberGetTypeID());
    for (const id other in @[ @{}, [NSData data], [NSDate date], [NSNull null] ]) {
        EXPECT_NE(CFGetTypeID(other), CFStringGetTypeID());
        EXPECT_NE(CFGetTypeID(other), CFArrayGetTypeID());
        EXPECT_NE(CFGetTypeID(other), CFNumberGetTypeID());
    }
}

TEST(Objects, RetainAndReleaseCount) {
    NSObject* object = [NSObject new];
    EXPECT_EQ(CFRetain(object), (CFTypeRef)object);
    EXPECT_EQ([object retainCount], 2u);
    CFRelease(object);
    EXPECT_EQ([object retainCount], 1u);
    CFRelease(object);
    CFRelease(nullptr);
}

TEST(Numbers, EachTypeKeepsItsValue) {
    const SInt32 small = -7;
    const SInt64 large = INT64_MIN;
    const double real = 0.25;
    SInt32 small_out = 0;
    SInt64 large_out = 0;
    double real_out = 0;
    CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &small);
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberSInt32Type, &small_out));
    EXPECT_EQ(small_out, small);
    CFRelease(number);
    number = CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &large);
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberSInt64Type, &large_out));
    EXPECT_EQ(large_out, large);
    CFRelease(number);
    number = CFNumberCreate(kCFAllocatorDefault, kCFNumberFloat64Type, &real);
    EXPECT_TRUE(CFNumberGetValue(number, kCFNumberFloat64Type, &real_out));
    EXPECT_EQ(real_out, real);
    CFRelease(number);
    EXPECT_EQ(CFNumberCreate(kCFAllocatorDefault, 99, &small), nullptr);
}

TEST(Numbers, AValueThatDoesNotFitIsSaidToBeChanged) {
    SInt32 value;
    EXPECT_FALSE(CFNumberGetValue((CFNumberRef) @5000000000LL, kCFNumberSInt32Type, &value));
    EXPECT_EQ(value, INT32_MAX);
    EXPECT_FALSE(CFNumberGetValue((CFNumberRef) @-5000000000LL, kCFNumberSInt32Type, &value));
    EXPECT_EQ(value, INT32_MIN);
    EXPECT_FALSE(CFNumberGetValue((CFNumberRef) @2.5, kCFNumberSInt32Type, &value));
    EXPECT_EQ(value, 2);
    EXPECT_TRUE(CFNumberGetValue((CFNumberRef) @2.0, kCFNumberSInt32Type, &value));
    SInt64 large;
    EXPECT_FALSE(CFNumberGetValue((CFNumberRef) @1e300, kCFNumberSInt64Type, &large));
    EXPECT_EQ(large, INT64_MAX);
    EXPECT_FALSE(CFNumberGetValue((CFNumberRef) @-1e300, kCFNumberSInt64Type, &large));
    EXPECT_EQ(large, INT64_MIN);
    EXPECT_FALSE(CFNumberGetValue((CFNumberRef) @1, 99, &large));
}

// The Mac's oldest types. A "long" of 32 bits was the 32-bit integer once, and in a 32-bit program
// still is: there UInt32 and uint32_t are two types.
#pragma once

typedef unsigned char UInt8;
typedef signed char SInt8;
typedef unsigned short UInt16;
typedef signed short SInt16;
#if __LP64__
typedef unsigned int UInt32;
typedef signed int SInt32;
#else
typedef unsigned long UInt32;
typedef signed long SInt32;
#endif
typedef signed long long SInt64;
typedef unsigned long long UInt64;

typedef unsigned char Boolean;
typedef UInt16 UniChar;
typedef unsigned long UniCharCount;
typedef unsigned long ByteCount;
typedef unsigned long ItemCount;
typedef long Size;
typedef char* Ptr;
typedef Ptr* Handle;
typedef unsigned char* StringPtr;
typedef unsigned char Str63[64];

typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef UInt32 OptionBits;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;

typedef struct Point {
    short v;
    short h;
} Point;

typedef struct ProcessSerialNumber {
    UInt32 highLongOfPSN;
    UInt32 lowLongOfPSN;
} ProcessSerialNumber;
typedef ProcessSerialNumber* ProcessSerialNumberPtr;

enum { noErr = 0 };

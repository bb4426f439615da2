#include "look/image_questions.h"

@implementation NSImage (MenuQuestions)

- (BOOL)isOfHiddenFile {
    return NO;
}

- (NSImage*)emblem {
    return nil;
}

- (NSImage*)emblemOfLinks {
    return nil;
}

- (BOOL)mayChangeAfterFirstLook {
    return NO;
}

- (NSImage*)imageForMenuItem {
    return self;
}

@end

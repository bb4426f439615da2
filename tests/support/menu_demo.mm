// Shows a contextual menu with every kind of row and saves pictures of it. Not a test: for looking.
//   menu_demo -picture FILE [-rows N] [-font SIZE] [-shadow YES] [-open TITLE] [-at "{X, Y}"]
//   [-stay YES]
// GNUstep's argument defaults work too, for example -MenuAppearance dark -GSScaleFactor 2.
#include <AppKit/AppKit.h>
#include <host/menu_picture.h>
#include <host/menu_tracking.h>
#include <stdlib.h>

#include "support/right_click.h"

@interface Demo : NSObject {
  @private
    NSString* _picture;
    NSMutableArray* _titles;
}
@end

@implementation Demo

- (NSUserDefaults*)defaults {
    return [NSUserDefaults standardUserDefaults];
}

- (NSMenuItem*)add:(NSString*)title icon:(NSString*)path to:(NSMenu*)menu {
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:title
                                                   action:@selector(picked:)
                                            keyEquivalent:@""] autorelease];
    [item setTarget:self];
    if (path) {
        NSImage* icon = [[[[NSWorkspace sharedWorkspace] iconForFile:path] copy] autorelease];
        const double size = [[self defaults] doubleForKey:@"font"];
        [icon setSize:size > 0 ? NSMakeSize(size + 3, size + 3) : NSMakeSize(16, 16)];
        [item setImage:icon];
    }
    [menu addItem:item];
    return item;
}

- (NSMenu*)menu {
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [menu setAutoenablesItems:NO];
    [menu setDelegate:(id)self];
    return menu;
}

- (void)fillRows:(NSInteger)count of:(NSMenu*)menu {
    NSArray* names = @[
        @"Documents", @"Annual report 2024 (final).pdf", @"Pictures", @"notes.txt",
        @"Ünïcode ½ Привет.md", @"build", @"photo-from-the-trip-to-the-mountains.jpeg"
    ];
    for (NSInteger i = 0; i < count; i++) {
        NSString* name = [names objectAtIndex:i % [names count]];
        if (count > 20) name = [NSString stringWithFormat:@"%@ %ld", name, (long)i];
        const BOOL folder = i % 7 == 0 || i % 7 == 2 || i % 7 == 5;
        NSMenuItem* item = [self add:name icon:folder ? @"/usr" : @"/etc/passwd" to:menu];
        if (folder) [item setSubmenu:[self menu]];
    }
}

- (NSMenu*)rootMenu {
    NSMenu* menu = [self menu];
    NSInteger rows = [[self defaults] integerForKey:@"rows"];
    if (rows) {
        [self fillRows:rows of:menu];
        return menu;
    }
    for (NSString* name in @[ @"Home", @"Documents" ]) {
        [[self add:name icon:@"/usr" to:menu] setSubmenu:[self menu]];
    }
    NSMenuItem* labelled = [self add:@"Budget.ods" icon:@"/etc/passwd" to:menu];
    NSDictionary* red = @{
        NSForegroundColorAttributeName : [NSColor redColor],
        NSFontAttributeName : [NSFont systemFontOfSize:14]
    };
    [labelled setAttributedTitle:[[[NSAttributedString alloc] initWithString:@"Budget.ods"
                                                                  attributes:red] autorelease]];
    NSMenuItem* yellow = [self add:@"Plan.txt" icon:@"/etc/passwd" to:menu];
    NSDictionary* attributes = @{NSForegroundColorAttributeName : [NSColor yellowColor]};
    [yellow
        setAttributedTitle:[[[NSAttributedString alloc] initWithString:@"Plan.txt"
                                                            attributes:attributes] autorelease]];
    [[self add:@"Not readable" icon:@"/usr" to:menu] setEnabled:NO];
    [self add:@"A very long file name that goes on and on until nobody wants to read it any more, "
              @"and then some more of it, version 12 (copy).tar.gz"
         icon:@"/etc/passwd"
           to:menu];
    [self add:@"two\nlines\tand a tab" icon:@"/etc/passwd" to:menu];
    [menu addItem:[NSMenuItem separatorItem]];
    [self add:@"Move selection here" icon:nil to:menu];
    NSMenuItem* copy = [self add:@"Copy selection here" icon:nil to:menu];
    [copy setAlternate:YES];
    [copy setKeyEquivalentModifierMask:NSAlternateKeyMask];
    [[self add:@"Show hidden files" icon:nil
            to:menu] setState:[[self defaults] boolForKey:@"check"]];
    [menu addItem:[NSMenuItem separatorItem]];
    [self add:@"Open" icon:nil to:menu];
    [self add:@"Show in File Manager" icon:nil to:menu];
    [self add:@"Copy Path" icon:nil to:menu];
    [self add:@"Move to Trash" icon:nil to:menu];
    return menu;
}

- (void)menuWillOpen:(NSMenu*)menu {
    if (![menu numberOfItems]) [self fillRows:9 of:menu];
}

- (void)picked:(NSMenuItem*)item {
    printf("picked %s\n", [[item title] UTF8String]);
}

- (void)step:(NSTimer*)timer {
    MenuSession* session = [MenuSession current];
    NSMenu* deepest = [[session levels] lastObject];
    if ([_titles count]) {
        NSMenuItem* item = (id)[deepest itemWithTitle:[_titles objectAtIndex:0]];
        [_titles removeObjectAtIndex:0];
        if ([item hasSubmenu]) {
            [session openSubmenuOfItem:item];
        } else {
            [session highlightItem:item inMenu:deepest];
        }
        return;
    }
    [timer invalidate];
    if (_picture) write_picture_of_open_menus(_picture, [[self defaults] boolForKey:@"shadow"]);
    NSString* command = [[self defaults] stringForKey:@"run"];
    if (command) system([command UTF8String]);
    if (![[self defaults] boolForKey:@"stay"]) [session cancel];
}

- (void)runTo:(NSString*)picture {
    _picture = [picture retain];
    _titles = [NSMutableArray new];
    NSString* open = [[self defaults] stringForKey:@"open"];
    if (open) [_titles addObjectsFromArray:[open componentsSeparatedByString:@"/"]];
    test::while_tracking(0.15, self, @selector(step:), YES);
    NSString* at = [[self defaults] stringForKey:@"at"] ?: @"{100, 760}";
    const double size = [[self defaults] doubleForKey:@"font"];
    [NSMenu popUpContextMenu:[self rootMenu]
                   withEvent:test::right_click(NSPointFromString(at))
                     forView:nil
                    withFont:size > 0 ? [NSFont systemFontOfSize:size] : nil];
}

@end

int main() {
    @autoreleasepool {
        [NSApplication sharedApplication];
        [NSApp finishLaunching];
        [[Demo new] runTo:[[NSUserDefaults standardUserDefaults] stringForKey:@"picture"]];
    }
    return 0;
}

#include "finderkit/context_menu.h"

#include "corefoundation/silent_disks.h"
#include "finderkit/applications_folder.h"

namespace {

bool is_unreserved(unsigned char byte) {
    return isalnum(byte) || strchr("/-._~!$&'()*+,=:@", byte);
}

// Percent escapes let the URL's text hold any byte.
NSURL* escaped_file_url(const std::string& path) {
    NSMutableString* text = [NSMutableString stringWithString:@"file://"];
    for (const char byte : path) {
        const auto value = static_cast<unsigned char>(byte);
        const bool plain = value < 0x80 && value != 0 && is_unreserved(value);
        [text appendFormat:plain ? @"%c" : @"%%%02X", value];
    }
    return [NSURL URLWithString:text];
}

NSURL* file_url(const std::string& path) {
    NSString* string = [NSString stringWithUTF8String:path.c_str()];
    // The second method asks the disk.
    const bool is_escaped = !string || files::is_silent_target(path);
    return is_escaped ? escaped_file_url(path) : [NSURL fileURLWithPath:string];
}

}  // namespace

@implementation FINode

- (instancetype)initWithNode:(const TFENode&)node {
    if ((self = [super init])) _url = [file_url(node.path) retain];
    return self;
}

- (void)dealloc {
    [_url release];
    [super dealloc];
}

- (NSURL*)url {
    return _url;
}

@end

@implementation NSArray (FinderNodes)

+ (NSArray*)FINodesFromFENodeVector:(const TFENodeVector*)vector {
    NSMutableArray* nodes = [NSMutableArray array];
    if (!vector) return nodes;
    for (const TFENode& node : vector->nodes) {
        FINode* object = [[FINode alloc] initWithNode:node];
        [nodes addObject:object];
        [object release];
    }
    return nodes;
}

@end

@implementation TContextMenu

// The installed applications, and the setting, may have changed since the last menu.
- (instancetype)initWithTitle:(NSString*)title {
    if ((self = [super initWithTitle:title])) prepare_applications();
    return self;
}

- (void)dealloc {
    [_nodes release];
    [super dealloc];
}

- (void)configureWithNodes:(const TFENodeVector*)nodes
          windowController:(id)controller
                 container:(BOOL)isContainer {
    [_nodes release];
    _nodes = [[NSArray FINodesFromFENodeVector:nodes] retain];
    _windowController = controller;
    _isContainer = isContainer;
}

- (NSArray*)nodes {
    return _nodes;
}

- (id)windowController {
    return _windowController;
}

- (BOOL)isContainer {
    return _isContainer;
}

- (void)removeAllItems {
    [super removeAllItems];
}

@end

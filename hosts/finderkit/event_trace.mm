#include "finderkit/event_trace.h"

#include <host/text.h>

#import <Foundation/Foundation.h>

#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <vector>

namespace {

using Bytes = std::vector<UInt8>;

FILE* trace_file;

void append_escaped(UInt8 byte, std::string& text) {
    char escape[8];
    if (byte == '"' || byte == '\\') {
        text += {'\\', static_cast<char>(byte)};
    } else if (byte < 0x20 || byte == 0x7F) {
        snprintf(escape, sizeof escape, "\\x%02x", byte);
        text += escape;
    } else {
        text += static_cast<char>(byte);
    }
}

template <typename Text>
std::string quoted_text(const Text& bytes) {
    std::string text = "\"";
    for (const auto byte : bytes) append_escaped(static_cast<UInt8>(byte), text);
    return text + "\"";
}

// A four-character code in readable form.
std::string code_name(FourCharCode code) {
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8) {
        append_escaped(static_cast<UInt8>(code >> shift), name);
    }
    return name;
}

template <typename Plain>
Plain plain(const Bytes& bytes) {
    Plain value = {};
    std::copy_n(bytes.begin(), std::min(bytes.size(), sizeof value),
                reinterpret_cast<UInt8*>(&value));
    return value;
}

template <typename Integer>
std::string write_number(const Bytes& bytes) {
    return std::to_string(plain<Integer>(bytes));
}

std::string write_boolean(const Bytes& bytes) { return plain<Boolean>(bytes) ? "true" : "false"; }

std::string write_code(const Bytes& bytes) {
    return "\"" + code_name(plain<FourCharCode>(bytes)) + "\"";
}

std::string write_text(const Bytes& bytes) { return quoted_text(bytes); }

std::string write_bytes(const Bytes& bytes) {
    const size_t most = 32;
    std::string text = "<";
    for (size_t i = 0; i < std::min(bytes.size(), most); i++) {
        char hex[4];
        snprintf(hex, sizeof hex, "%02x", bytes[i]);
        text += hex;
    }
    return text + (bytes.size() > most ? "...>" : ">");
}

std::string write_utf16(const Bytes& bytes) {
    NSString* text =
        [[[NSString alloc] initWithCharacters:reinterpret_cast<const unichar*>(bytes.data())
                                       length:bytes.size() / sizeof(unichar)] autorelease];
    const char* utf8 = nullptr;
    @try {
        utf8 = [text UTF8String];
    } @catch (NSException*) {  // a lone surrogate
    }
    return utf8 ? quoted_text(std::string(utf8)) : write_bytes(bytes);
}

std::string write_file(const Bytes& bytes) {
    const FSRef ref = plain<FSRef>(bytes);
    char path[PATH_MAX];
    if (FSRefMakePath(&ref, reinterpret_cast<UInt8*>(path), sizeof path) != noErr) {
        return "(not there)";
    }
    return quoted_text(std::string(path));
}

std::string write_alias(const Bytes& bytes) {
    AEDesc alias, file;
    AECreateDesc(typeAlias, bytes.data(), static_cast<Size>(bytes.size()), &alias);
    const OSErr error = AECoerceDesc(&alias, typeFSRef, &file);
    AEDisposeDesc(&alias);
    if (error != noErr) return "(not there)";
    Bytes ref(sizeof(FSRef));
    AEGetDescData(&file, ref.data(), sizeof(FSRef));
    AEDisposeDesc(&file);
    return write_file(ref);
}

const struct {
    DescType type;
    std::string (*write)(const Bytes& bytes);
} writers[] = {
    {typeBoolean, write_boolean},
    {typeSInt16, write_number<SInt16>},
    {typeSInt32, write_number<SInt32>},
    {typeUInt32, write_number<UInt32>},
    {typeSInt64, write_number<SInt64>},
    {typeType, write_code},
    {typeEnumerated, write_code},
    {typeKeyword, write_code},
    {typeApplSignature, write_code},
    {typeChar, write_text},
    {typeUTF8Text, write_text},
    {typeUnicodeText, write_utf16},
    {typeFSRef, write_file},
    {typeAlias, write_alias},
    {typeFileURL, write_text},
};

std::string describe_plain(const AEDesc& desc) {
    Bytes bytes(static_cast<size_t>(AEGetDescDataSize(&desc)));
    AEGetDescData(&desc, bytes.data(), static_cast<Size>(bytes.size()));
    for (const auto& writer : writers) {
        if (writer.type == desc.descriptorType) {
            return code_name(writer.type) + " " + writer.write(bytes);
        }
    }
    if (desc.descriptorType == typeNull) return "null";
    return code_name(desc.descriptorType) + " " + write_bytes(bytes);
}

std::string describe_items(const AEDescList& list, size_t indent);

// The value's line from the end of its keyword on, and the lines of its items.
std::string describe_value(const AEDesc& desc, size_t indent) {
    long count = 0;
    if (AECountItems(&desc, &count) != noErr) return describe_plain(desc) + "\n";
    const bool is_list = desc.descriptorType == typeAEList;
    return (is_list ? "list of " : "record of ") + std::to_string(count) + "\n" +
           describe_items(desc, indent + 2);
}

std::string describe_items(const AEDescList& list, size_t indent) {
    std::string text;
    long count = 0;
    AECountItems(&list, &count);
    for (long index = 1; index <= count; index++) {
        AEKeyword keyword = typeWildCard;
        AEDesc item;
        if (AEGetNthDesc(&list, index, typeWildCard, &keyword, &item) != noErr) continue;
        text += std::string(indent, ' ');
        if (keyword != typeWildCard) text += code_name(keyword) + ": ";
        text += describe_value(item, indent);
        AEDisposeDesc(&item);
    }
    return text;
}

FourCharCode code_attribute(const AppleEvent& event, AEKeyword keyword) {
    FourCharCode code = 0;
    AEGetAttributePtr(&event, keyword, typeWildCard, nullptr, &code, sizeof code, nullptr);
    return code;
}

OSErr write_down(const AppleEvent* event, AppleEvent*, void*) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    const std::string text = describe_event(*event);
    [pool release];
    fwrite(text.data(), 1, text.size(), trace_file);
    fflush(trace_file);
    return errAEEventNotHandled;  // the event goes on to its handler
}

}  // namespace

std::string describe_event(const AppleEvent& event) {
    return code_name(code_attribute(event, keyEventClassAttr)) + "/" +
           code_name(code_attribute(event, keyEventIDAttr)) + " to \"" +
           code_name(code_attribute(event, keyAddressAttr)) + "\"\n" + describe_items(event, 2);
}

bool trace_events(const std::string& file, std::string* problem) {
    FILE* opened = file == "-" ? stderr : fopen(file.c_str(), "ae");
    if (!opened) {
        *problem = translated("cannot write the trace to %s: %s", {file, error_text(errno)});
        return false;
    }
    if (trace_file && trace_file != stderr) fclose(trace_file);
    trace_file = opened;
    AEInstallSpecialHandler(keyPreDispatch, write_down, false);
    return true;
}

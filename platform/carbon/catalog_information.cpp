#include <host/glib_owners.h>
#include <Carbon/Files.h>

#include <glib.h>
#include <string.h>

#include "carbon/file_references.h"

namespace {

using files::File;

// A FileInfo or FolderInfo in native byte order. Both hold their flags at the same place. Before
// the flags, a FileInfo has two OSTypes and a FolderInfo a rectangle, which nobody asks for.
FileInfo native_finder_info(File& file) {
    const files::FinderInformation& stored = files::finder_information(file);
    FileInfo info = {};
    info.fileType = stored.type();
    info.fileCreator = stored.creator();
    info.finderFlags = stored.flags();
    info.location.v = static_cast<short>(stored.word16(10));
    info.location.h = static_cast<short>(stored.word16(12));
    info.reservedField = stored.word16(14);
    if (S_ISLNK(file.mode)) info.finderFlags |= kIsAlias;
    if (files::is_invisible(file)) info.finderFlags |= kIsInvisible;
    return info;
}

void fill_finder_info(File& file, FSCatalogInfo* info) {
    const FileInfo native = native_finder_info(file);
    static_assert(sizeof native == sizeof info->finderInfo);
    memcpy(info->finderInfo, &native, sizeof native);

    UInt16 extended[8];
    for (int i = 0; i < 8; i++) extended[i] = file.finder_information.word16(16 + 2 * i);
    memcpy(info->extFinderInfo, extended, sizeof extended);
}

OSErr fill_name(const File& file, HFSUniStr255* name) {
    glong units;
    const std::unique_ptr<gunichar2, files::Release<g_free>> text(g_utf8_to_utf16(
        file.name(), static_cast<glong>(file.name_length()), nullptr, &units, nullptr));
    if (!text) return bdNamErr;
    const bool fits = units <= 255;
    if (fits) {
        name->length = static_cast<UInt16>(units);
        memcpy(name->unicode, text.get(), static_cast<size_t>(units) * sizeof *text);
    }
    return fits ? noErr : bdNamErr;
}

// Makes a new reference: do not use `file` after this.
OSErr make_parent(const File& file, FSRef* parent) {
    const size_t length = file.folder_length() > 1 ? file.folder_length() - 1 : 1;
    const std::string folder = file.path.substr(0, length);
    return static_cast<OSErr>(
        FSPathMakeRef(reinterpret_cast<const UInt8*>(folder.c_str()), parent, nullptr));
}

}  // namespace

OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                       HFSUniStr255* outName, FSSpec* spec, FSRef* parent) {
    OSErr error;
    File* file = files::file_for(ref, files::CATALOG_INFO, &error);
    if (!file) return error;

    if (info && (which & kFSCatInfoNodeFlags)) {
        info->nodeFlags = S_ISDIR(file->mode) ? kFSNodeIsDirectoryMask : 0;
    }
    if (info && (which & kFSCatInfoFinderInfo)) fill_finder_info(*file, info);
    if (spec) memset(spec, 0, sizeof *spec);
    if (outName) error = fill_name(*file, outName);
    if (error == noErr && parent) error = make_parent(*file, parent);
    return error;
}

#include "quicklook/decoder/audio_cover.h"

#include <taglib/aifffile.h>
#include <taglib/apefile.h>
#include <taglib/apetag.h>
#include <taglib/asffile.h>
#include <taglib/asftag.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/mpcfile.h>
#include <taglib/tfilestream.h>
#include <taglib/wavfile.h>
#include <taglib/wavpackfile.h>
#include <taglib/xiphcomment.h>

#include <algorithm>

#include "quicklook/reply.h"

namespace thumbnails {

namespace {

using Bytes = TagLib::ByteVector;

Bytes cover_in(const TagLib::ID3v2::Tag* tag) {
    Bytes found;
    if (!tag) return found;
    for (const TagLib::ID3v2::Frame* frame : tag->frameList("APIC")) {
        using Picture = TagLib::ID3v2::AttachedPictureFrame;
        const auto* picture = dynamic_cast<const Picture*>(frame);
        if (!picture) continue;
        if (found.isEmpty() || picture->type() == Picture::FrontCover) found = picture->picture();
    }
    return found;
}

Bytes cover_in(const TagLib::List<TagLib::FLAC::Picture*>& pictures) {
    Bytes found;
    for (const TagLib::FLAC::Picture* picture : pictures) {
        const bool is_front = picture->type() == TagLib::FLAC::Picture::FrontCover;
        if (found.isEmpty() || is_front) found = picture->data();
    }
    return found;
}

// The picture follows the name of its file.
Bytes cover_in(const TagLib::APE::Tag* tag) {
    if (!tag || !tag->itemListMap().contains("COVER ART (FRONT)")) return {};
    const Bytes data = tag->itemListMap()["COVER ART (FRONT)"].binaryData();
    const int end = data.find('\0');
    return end < 0 ? Bytes() : data.mid(static_cast<unsigned>(end) + 1);
}

Bytes cover_in(const TagLib::MP4::Tag* tag) {
    if (!tag || !tag->contains("covr")) return {};
    const TagLib::MP4::CoverArtList covers = tag->item("covr").toCoverArtList();
    return covers.isEmpty() ? Bytes() : covers.front().data();
}

Bytes cover_in(TagLib::ASF::Tag* tag) {
    if (!tag || !tag->attributeListMap().contains("WM/Picture")) return {};
    const auto& pictures = tag->attributeListMap()["WM/Picture"];
    return pictures.isEmpty() ? Bytes() : pictures.front().toPicture().picture();
}

// The first of the tags that has a cover.
template <typename... Tags>
Bytes first_cover(const Tags&... tags) {
    Bytes found;
    ((found.isEmpty() ? static_cast<void>(found = cover_in(tags)) : static_cast<void>(0)), ...);
    return found;
}

Bytes cover_of(TagLib::File* file) {
    namespace T = TagLib;
    if (auto* mpeg = dynamic_cast<T::MPEG::File*>(file)) {
        return first_cover(mpeg->ID3v2Tag(), mpeg->APETag());
    }
    if (auto* flac = dynamic_cast<T::FLAC::File*>(file)) {
        return first_cover(flac->pictureList(), flac->ID3v2Tag());
    }
    if (auto* mp4 = dynamic_cast<T::MP4::File*>(file)) return cover_in(mp4->tag());
    if (auto* asf = dynamic_cast<T::ASF::File*>(file)) return cover_in(asf->tag());
    if (auto* wave = dynamic_cast<T::RIFF::WAV::File*>(file)) return cover_in(wave->ID3v2Tag());
    if (auto* aiff = dynamic_cast<T::RIFF::AIFF::File*>(file)) return cover_in(aiff->tag());
    if (auto* ape = dynamic_cast<T::APE::File*>(file)) return cover_in(ape->APETag());
    if (auto* mpc = dynamic_cast<T::MPC::File*>(file)) return cover_in(mpc->APETag());
    if (auto* wavpack = dynamic_cast<T::WavPack::File*>(file)) return cover_in(wavpack->APETag());
    // Ogg files of all kinds: Vorbis, Opus, Speex, FLAC.
    auto* comment = dynamic_cast<T::Ogg::XiphComment*>(file->tag());
    return comment ? cover_in(comment->pictureList()) : Bytes();
}

std::string text_of(const TagLib::String& text) { return text.stripWhiteSpace().to8Bit(true); }

}  // namespace

AudioTags read_audio_tags() {
    AudioTags tags;
    // Neither is destroyed: the process ends first.
    auto* stream = new TagLib::FileStream(file_descriptor, true);
    auto& file = *new TagLib::FileRef(stream, true, TagLib::AudioProperties::Fast);
    TagLib::File* const audio = file.isNull() ? nullptr : file.file();
    if (!audio) return tags;
    tags.is_audio = audio->isValid();
    const Bytes cover = cover_of(audio);
    tags.cover.assign(cover.data(), cover.size());
    if (const TagLib::Tag* tag = file.tag()) {
        tags.title = text_of(tag->title());
        tags.artist = text_of(tag->artist());
        tags.album = text_of(tag->album());
    }
    if (file.audioProperties()) tags.seconds = file.audioProperties()->lengthInSeconds();
    return tags;
}

}  // namespace thumbnails

// SPDX-License-Identifier: MIT
// Headers, sections and resource directories of a PE file.
#include "platform/posix/peimage.h"

#include <algorithm>
#include <bit>

namespace treevault {
namespace {

// The structures are read as they lie in the file.
static_assert(std::endian::native == std::endian::little);

struct FileHeader {
    uint32_t Signature;
    uint16_t Machine, SectionCount;
    uint32_t Time, SymbolTable, SymbolCount;
    uint16_t OptionalHeaderSize, Characteristics;
};
static_assert(sizeof(FileHeader) == 24);

struct Section {
    char Name[8];
    uint32_t VirtualSize, Address, FileSize, FileOffset;
    char Others[16];
};
static_assert(sizeof(Section) == 40);

struct DataDirectory {
    uint32_t Address, Size;
};

struct ResourceDirectory {
    uint32_t Characteristics, Time;
    uint16_t Major, Minor, NamedCount, NumberedCount;
};
static_assert(sizeof(ResourceDirectory) == 16);

constexpr uint32_t HighBit = 0x80000000u;

struct ResourceEntry {
    uint32_t Id;     // with the high bit, where a name stands
    uint32_t Offset; // with the high bit, that of a directory
};

struct ResourceData {
    uint32_t Address, Size, CodePage, Reserved;
};

class Image {
public:
    explicit Image(ByteView file) noexcept : File(file) {}

    bool ReadHeaders();
    bool ReadResources(uint32_t type, uint32_t name, std::vector<LanguageResource>& found) const;

private:
    using Entries = std::vector<ResourceEntry>;

    bool ReadOptionalHeader(uint64_t at, uint32_t size);
    bool ReadSections(uint64_t at, uint32_t count);
    bool MapAddress(uint32_t address, uint32_t size, ByteView& content) const noexcept;

    static bool ReadEntries(ByteView tree, uint32_t at, Entries& entries);
    static bool Descend(ByteView tree, uint32_t id, Entries& entries);

    ByteView File;
    DataDirectory Resources = {};
    std::vector<Section> Sections;
};

bool Image::ReadHeaders() {
    uint16_t mark = 0;
    uint32_t at = 0;
    FileHeader header;
    if (!File.Read(0, mark) || mark != 0x5A4D || !File.Read(0x3C, at) || !File.Read(at, header) ||
        header.Signature != 0x4550)
        return false;
    const uint64_t optionalHeader = uint64_t{at} + sizeof header;
    return ReadOptionalHeader(optionalHeader, header.OptionalHeaderSize) &&
           ReadSections(optionalHeader + header.OptionalHeaderSize, header.SectionCount);
}

bool Image::ReadOptionalHeader(uint64_t at, uint32_t size) {
    ByteView header;
    uint16_t kind = 0;
    if (!File.Slice(at, size, header) || !header.Read(0, kind) || (kind != 0x10B && kind != 0x20B))
        return false;
    const uint32_t directoriesAt = kind == 0x10B ? 96 : 112;
    constexpr uint32_t resources = 2;
    uint32_t count = 0;
    if (!header.Read(directoriesAt - sizeof count, count))
        return false;
    return count <= resources ||
           header.Read(directoriesAt + resources * sizeof(DataDirectory), Resources);
}

// What a section has in the file must be there. There are no more of them than Windows loads, so
// that looking an address up costs little.
bool Image::ReadSections(uint64_t at, uint32_t count) {
    constexpr uint32_t mostSections = 96;
    if (count > mostSections)
        return false;
    for (uint32_t i = 0; i < count; ++i) {
        Section section;
        ByteView content;
        if (!File.Read(at + i * sizeof section, section) ||
            !File.Slice(section.FileOffset, section.FileSize, content))
            return false;
        Sections.push_back(section);
    }
    return true;
}

bool Image::MapAddress(uint32_t address, uint32_t size, ByteView& content) const noexcept {
    for (const Section& section : Sections) {
        const uint32_t extent = section.VirtualSize == 0
                                    ? section.FileSize
                                    : std::min(section.VirtualSize, section.FileSize);
        if (address < section.Address || address - section.Address > extent)
            continue;
        const uint32_t offset = address - section.Address;
        if (size <= extent - offset)
            return File.Slice(uint64_t{section.FileOffset} + offset, size, content);
    }
    return false;
}

bool Image::ReadEntries(ByteView tree, uint32_t at, Entries& entries) {
    ResourceDirectory directory;
    if (!tree.Read(at, directory))
        return false;
    const uint32_t count = uint32_t{directory.NamedCount} + directory.NumberedCount;
    entries.clear();
    for (uint32_t i = 0; i < count; ++i) {
        ResourceEntry entry;
        if (!tree.Read(at + sizeof directory + i * sizeof entry, entry))
            return false;
        entries.push_back(entry);
    }
    return true;
}

// Replaces the entries by those of the directory that has the number among them, or by none.
bool Image::Descend(ByteView tree, uint32_t id, Entries& entries) {
    const auto found = std::ranges::find(entries, id, &ResourceEntry::Id);
    if (found == entries.end()) {
        entries.clear();
        return true;
    }
    return (found->Offset & HighBit) && ReadEntries(tree, found->Offset & ~HighBit, entries);
}

// The tree has three levels, whatever it says: types, names and languages.
bool Image::ReadResources(uint32_t type, uint32_t name,
                          std::vector<LanguageResource>& found) const {
    if (Resources.Address == 0)
        return true;
    ByteView tree;
    Entries entries;
    if (!MapAddress(Resources.Address, Resources.Size, tree) || !ReadEntries(tree, 0, entries) ||
        !Descend(tree, type, entries) || !Descend(tree, name, entries))
        return false;
    for (const ResourceEntry& entry : entries) {
        ResourceData data;
        LanguageResource resource = {entry.Id, {}};
        if ((entry.Offset & HighBit) || !tree.Read(entry.Offset, data) ||
            !MapAddress(data.Address, data.Size, resource.Content))
            return false;
        found.push_back(resource);
    }
    return true;
}

} // namespace

bool ReadResources(ByteView file, uint32_t type, uint32_t name,
                   std::vector<LanguageResource>& resources) {
    Image image(file);
    return image.ReadHeaders() && image.ReadResources(type, name, resources);
}

} // namespace treevault

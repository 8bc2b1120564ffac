// SPDX-License-Identifier: MIT
// Message modules made by hand, byte for byte.
#ifndef TREEVAULT_TESTS_SUPPORT_MESSAGEFILES_H
#define TREEVAULT_TESTS_SUPPORT_MESSAGEFILES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace treevault::tests {

// Little-endian bytes in the making.
class ByteWriter {
public:
    size_t Size() const { return Bytes.size(); }

    template <class... Numbers>
    void Put16(Numbers... numbers) {
        (PutNumber(static_cast<uint64_t>(numbers), 2), ...);
    }
    template <class... Numbers>
    void Put32(Numbers... numbers) {
        (PutNumber(static_cast<uint64_t>(numbers), 4), ...);
    }
    void Put(std::string_view bytes) { Bytes += bytes; }
    void FillTo(size_t size) { Bytes.resize(size, '\0'); }

    const std::string& Str() const { return Bytes; }

private:
    void PutNumber(uint64_t number, unsigned size) {
        for (; size > 0; --size, number >>= 8)
            Bytes += static_cast<char>(number & 0xFF);
    }

    std::string Bytes;
};

// A text of narrow characters and how it is stored: with a zero behind it, on which Windows relies.
struct MessageSpec {
    uint32_t Id;
    std::string Text;
    bool Wide = true;
};

// Each message is a block of its own.
inline std::string MakeMessageTable(const std::vector<MessageSpec>& messages) {
    ByteWriter entries, table;
    const size_t entriesAt = 4 + 12 * messages.size();
    table.Put32(messages.size());
    for (const MessageSpec& message : messages) {
        table.Put32(message.Id, message.Id, entriesAt + entries.Size());
        const size_t textSize = (message.Text.size() + 1) * (message.Wide ? 2 : 1);
        const size_t size = (4 + textSize + 3) & ~size_t{3};
        const size_t start = entries.Size();
        entries.Put16(size, message.Wide ? 1 : 0);
        for (const char c : message.Text) {
            if (message.Wide)
                entries.Put16(c);
            else
                entries.Put({&c, 1});
        }
        entries.FillTo(start + size);
    }
    table.Put(entries.Str());
    return table.Str();
}

struct TableSpec {
    uint32_t Language;
    std::string Content;
};

enum class ImageKind { Pe32 = 0x10B, Pe32Plus = 0x20B };

// Where things lie in the files below.
inline constexpr uint32_t HeadersAt = 0x40;       // of the signature
inline constexpr uint32_t ResourcesAt = 0x200;    // in the file
inline constexpr uint32_t ResourcesBase = 0x1000; // in memory
inline constexpr uint32_t LanguagesAt = 0x30;     // of the entries, in the resources: 8 bytes each

// A resource tree: type 11, name 1, and a table for each language.
inline std::string MakeResources(const std::vector<TableSpec>& tables) {
    constexpr uint32_t directory = 0x80000000u;
    ByteWriter tree;
    for (const uint32_t id : {11u, 1u}) {
        const uint32_t below = static_cast<uint32_t>(tree.Size()) + 24;
        tree.Put32(0, 0, 0);
        tree.Put16(0, 1);
        tree.Put32(id, directory | below);
    }
    const size_t dataAt = LanguagesAt + 16 + 8 * tables.size();
    tree.Put32(0, 0, 0);
    tree.Put16(0, tables.size());
    for (size_t i = 0; i < tables.size(); ++i)
        tree.Put32(tables[i].Language, dataAt + 16 * i);
    size_t contentAt = dataAt + 16 * tables.size();
    for (const TableSpec& table : tables) {
        tree.Put32(ResourcesBase + contentAt, table.Content.size(), 0, 0);
        contentAt += (table.Content.size() + 3) & ~size_t{3};
    }
    for (const TableSpec& table : tables) {
        tree.Put(table.Content);
        tree.FillTo((tree.Size() + 3) & ~size_t{3});
    }
    return tree.Str();
}

// An image with one section, that of the resources; without resources that is some other one.
inline std::string MakeImage(const std::string& resources, ImageKind kind = ImageKind::Pe32Plus) {
    const bool plus = kind == ImageKind::Pe32Plus;
    const size_t content = resources.empty() ? 16 : resources.size();
    const size_t inFile = (content + 0x1FF) & ~size_t{0x1FF};
    const size_t inMemory = (content + 0xFFF) & ~size_t{0xFFF};
    ByteWriter image;
    image.Put("MZ");
    image.FillTo(0x3C);
    image.Put32(HeadersAt);
    image.Put({"PE\0\0", 4});
    image.Put16(plus ? 0x8664 : 0x14C, 1);
    image.Put32(0, 0, 0);
    image.Put16(plus ? 240 : 224, plus ? 0x2022 : 0x2102);
    image.Put16(kind, 2);                 // the kind and the version of the linker
    image.Put32(0, inFile, 0, 0, 0x1000); // sizes, no entry point, base of code
    if (plus)
        image.Put32(0x80000000u, 1); // base in memory
    else
        image.Put32(0x1000, 0x10000000); // base of data, base in memory
    image.Put32(0x1000, 0x200);          // alignments
    image.Put16(4, 0, 0, 0, 5, 2);       // versions
    image.Put32(0, ResourcesBase + inMemory, ResourcesAt, 0);
    image.Put16(2, 0x140); // subsystem, characteristics
    for (const uint32_t size : {0x100000u, 0x1000u, 0x100000u, 0x1000u}) {
        image.Put32(size);
        if (plus)
            image.Put32(0);
    }
    image.Put32(0, 16); // flags, count of directories
    image.Put32(0, 0, 0, 0);
    if (resources.empty())
        image.Put32(0, 0);
    else
        image.Put32(ResourcesBase, resources.size());
    for (int i = 3; i < 16; ++i)
        image.Put32(0, 0);
    image.Put({".rsrc\0\0\0", 8});
    image.Put32(content, ResourcesBase, inFile, ResourcesAt, 0, 0, 0, 0x40000040);
    image.FillTo(ResourcesAt);
    image.Put(resources);
    image.FillTo(ResourcesAt + inFile);
    return image.Str();
}

inline std::string MakeModule(const std::vector<TableSpec>& tables,
                              ImageKind kind = ImageKind::Pe32Plus) {
    return MakeImage(MakeResources(tables), kind);
}

// One table of the neutral language.
inline std::string MakeMessageModule(const std::vector<MessageSpec>& messages) {
    return MakeModule({TableSpec{0, MakeMessageTable(messages)}});
}

} // namespace treevault::tests

#endif

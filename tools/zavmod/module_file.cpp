#include "module_file.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

struct Damaged {};

/// Little-endian numbers and texts at offsets that the file itself claims, so each is checked.
class Bytes {
public:
    explicit Bytes(const std::string& bytes) : mBytes(bytes) {}

    uint64_t Number(uint64_t offset, unsigned size) const {
        Check(offset, size);
        uint64_t value = 0;
        for (unsigned i = 0; i < size; ++i)
            value |=
                static_cast<uint64_t>(static_cast<unsigned char>(mBytes[static_cast<size_t>(offset) + i]))
                << 8 * i;
        return value;
    }
    uint32_t Word(uint64_t offset) const { return static_cast<uint32_t>(Number(offset, 4)); }
    uint16_t Half(uint64_t offset) const { return static_cast<uint16_t>(Number(offset, 2)); }

    bool Has(uint64_t offset, const char* text, size_t size) const {
        return offset <= mBytes.size() && mBytes.size() - offset >= size &&
               std::memcmp(mBytes.data() + offset, text, size) == 0;
    }

    std::string Text(uint64_t offset) const {
        Check(offset, 1);
        const size_t end = mBytes.find('\0', static_cast<size_t>(offset));
        if (end == std::string::npos) throw Damaged();
        return mBytes.substr(static_cast<size_t>(offset), end - static_cast<size_t>(offset));
    }

private:
    void Check(uint64_t offset, uint64_t size) const {
        if (offset > mBytes.size() || mBytes.size() - offset < size) throw Damaged();
    }

    const std::string& mBytes;
};

/// Names claimed by a table may overlap and repeat; what they sum up to is bounded, not what they claim.
class NameBudget {
public:
    explicit NameBudget(size_t bytes) : mLeft(bytes) {}
    void Take(const std::string& name) {
        if (name.size() >= mLeft) throw Damaged();
        mLeft -= name.size() + 1;
    }

private:
    size_t mLeft;
};

const size_t mostNames = 64u << 20;

/// The places in which 32-bit and 64-bit ELF files differ.
struct ElfLayout {
    const char* mText;
    unsigned mAddress;                                   // bytes of an offset or address
    uint64_t mSectionTable, mSectionSize, mSectionCount; // in the file header
    uint64_t mOffset, mSize, mLink;                      // in a section header
    uint64_t mSymbolSize, mInfo, mSection;               // in a symbol
};

const ElfLayout elf32 = {"ELF 32-bit", 4, 0x20, 0x2E, 0x30, 0x10, 0x14, 0x18, 16, 12, 14};
const ElfLayout elf64 = {"ELF 64-bit", 8, 0x28, 0x3A, 0x3C, 0x18, 0x20, 0x28, 24, 4, 6};

std::string MachineName(unsigned machine) {
    switch (machine) {
    case 3:
    case 0x14C:
        return "x86";
    case 62:
    case 0x8664:
        return "x86-64";
    case 183:
    case 0xAA64:
        return "ARM64";
    default:
        return "machine " + std::to_string(machine);
    }
}

void ReadSymbols(const Bytes& file, const ElfLayout& elf, uint64_t table, uint64_t size, uint64_t texts,
                 ModuleFile& module) {
    NameBudget budget(mostNames);
    for (uint64_t at = 0; at + elf.mSymbolSize <= size; at += elf.mSymbolSize) {
        const uint64_t symbol = table + at;
        const unsigned type = static_cast<unsigned>(file.Number(symbol + elf.mInfo, 1));
        const bool isFunction = (type & 15) == 2, isVisible = type >> 4 == 1 || type >> 4 == 2;
        const std::string name = file.Text(texts + file.Word(symbol));
        budget.Take(name);
        if (isFunction && isVisible && file.Half(symbol + elf.mSection) != 0) module.mFunctions.insert(name);
    }
}

std::string ReadElf(const Bytes& file, ModuleFile& module) {
    if (file.Number(5, 1) != 1) return "an ELF file of the other byte order";
    const ElfLayout& elf = file.Number(4, 1) == 2 ? elf64 : elf32;
    if (file.Half(16) != 3) return "an ELF file, but no shared library";
    module.mFormat = elf.mText + (", " + MachineName(file.Half(18)));
    const uint64_t table = file.Number(elf.mSectionTable, elf.mAddress);
    const uint64_t step = file.Half(elf.mSectionSize), count = file.Half(elf.mSectionCount);
    for (uint64_t i = 0; i < count; ++i) {
        const uint64_t section = table + i * step;
        if (file.Word(section + 4) != 11) continue;
        const uint64_t strings = table + step * file.Word(section + elf.mLink);
        ReadSymbols(file, elf, file.Number(section + elf.mOffset, elf.mAddress),
                    file.Number(section + elf.mSize, elf.mAddress),
                    file.Number(strings + elf.mOffset, elf.mAddress), module);
        return std::string();
    }
    return "an ELF file without a table of dynamic symbols";
}

/// Turns addresses of the loaded image into offsets of the file.
class PeSections {
public:
    PeSections(const Bytes& file, uint64_t table, unsigned count) {
        for (unsigned i = 0; i < count; ++i, table += 40)
            mSections.push_back({file.Word(table + 12), file.Word(table + 16), file.Word(table + 20)});
    }

    uint64_t Offset(uint32_t address) const {
        for (const Section& s : mSections)
            if (address >= s.mAddress && address - s.mAddress < s.mSize)
                return s.mOffset + uint64_t(address - s.mAddress);
        throw Damaged();
    }

private:
    struct Section {
        uint32_t mAddress, mSize, mOffset;
    };
    std::vector<Section> mSections;
};

std::string ReadPe(const Bytes& file, ModuleFile& module) {
    const uint64_t header = file.Word(0x3C);
    if (!file.Has(header, "PE\0\0", 4)) return "a program of DOS";
    if (!(file.Half(header + 22) & 0x2000)) return "a PE file, but no DLL";
    const uint64_t optional = header + 24;
    const bool is64 = file.Half(optional) == 0x20B;
    module.mFormat = (is64 ? "PE 64-bit, " : "PE 32-bit, ") + MachineName(file.Half(header + 4));
    const PeSections sections(file, optional + file.Half(header + 20), file.Half(header + 6));
    const uint64_t directories = optional + (is64 ? 112 : 96);
    const uint32_t exports = file.Word(directories - 4) > 0 ? file.Word(directories) : 0;
    if (!exports) return std::string();
    const uint64_t table = sections.Offset(exports);
    const uint32_t count = file.Word(table + 24);
    const uint64_t names = count > 0 ? sections.Offset(file.Word(table + 32)) : 0;
    NameBudget budget(mostNames);
    for (uint32_t i = 0; i < count; ++i) {
        const std::string name = file.Text(sections.Offset(file.Word(names + uint64_t(i) * 4)));
        budget.Take(name);
        module.mFunctions.insert(name);
    }
    return std::string();
}

} // namespace

std::string ReadModuleFile(const std::string& bytes, ModuleFile& module) {
    const Bytes file(bytes);
    module = ModuleFile();
    try {
        if (file.Has(0, "\177ELF", 4)) return ReadElf(file, module);
        if (file.Has(0, "MZ", 2)) return ReadPe(file, module);
        return "neither an ELF nor a PE file";
    } catch (const Damaged&) {
        return "damaged or cut short";
    }
}

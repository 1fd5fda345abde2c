// Any bytes are a dictionary, too few, or an error; how they are cut makes no difference; and what was read
// is packed to bytes that read to the same.

#include <algorithm>
#include <cstdlib>

#include <zavbase/zavbase.h>

namespace {

enum Outcome { WHOLE, TOO_FEW, WRONG };

Outcome Read(ZAV_UValDict& dict, const uint8_t* data, size_t size, size_t piece) {
    ZAV_BinPackUValDict packer(dict);
    const unsigned char* cursor = data;
    try {
        for (size_t end = 0; end < size;) {
            end = (std::min)(end + piece, size);
            if (!packer.Get(&cursor, data + end)) return WHOLE;
        }
    } catch (ZAV_BinPackException* e) {
        e->Delete();
        return WRONG;
    }
    return TOO_FEW;
}

std::string Packed(ZAV_UValDict& dict, size_t piece) {
    ZAV_BinPackUValDict packer(dict);
    std::string all;
    unsigned char buffer[512];
    for (bool more = true; more;) {
        unsigned char* cursor = buffer;
        more = packer.Put(&cursor, buffer + piece) != 0;
        all.append(reinterpret_cast<char*>(buffer), static_cast<size_t>(cursor - buffer));
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ZAV_UValDict whole(16), pieces(16), again(16);
    const Outcome outcome = Read(whole, data, size, size);
    if (Read(pieces, data, size, 3) != outcome) std::abort();
    if (outcome != WHOLE) return 0;
    const std::string packed = Packed(whole, 512);
    const auto* bytes = reinterpret_cast<const uint8_t*>(packed.data());
    if (Read(again, bytes, packed.size(), 512) != WHOLE) std::abort();
    if (Packed(pieces, 7) != packed || Packed(again, 512) != packed) std::abort();
    return 0;
}

#include "text_support.h"

#include <clocale>
#include <random>

#include <gtest/gtest.h>

#include <zavbase/values/dict_help_internal.h>

namespace {

// The first entry in the order of the slots that has the key but for case.
ZAV_AssocUVal* Walked(ZAV_UValDict& dict, const std::string& key) {
    const ZAV_String wanted = ZAV_String(key.c_str()).ToUpper();
    ZAV_Iterator it(dict.GetValuePtr());
    while (ZAV_CltObject* o = ++it)
        if (ZAV_String(static_cast<ZAV_AssocUVal*>(o)->Key()).ToUpper() == wanted)
            return static_cast<ZAV_AssocUVal*>(o);
    return nullptr;
}

// A key with random case; often one that collides with others in the table.
std::string AnyKey(std::mt19937& random) {
    std::string key = "key" + std::to_string(random() % 60) + "\xe4\xfc"[random() % 2];
    for (char& c : key)
        if (random() % 3 == 0) c = static_cast<char>(c ^ (static_cast<unsigned char>(c) >= 0x60 ? 0x20 : 0));
    return key;
}

uint64_t Steps(ZAV_UValDict& dict) { return ZAV_DictHelp::IfAny(*dict.GetValuePtr())->mFold.Steps(); }

TEST(KeyFold, FindsWhatTheWalkFinds) {
    std::mt19937 random(815);
    const char* const locales[] = {"C", ".1252", "de_DE.ISO-8859-1", "C"};
    for (int step = 0; step < 20000; ++step) {
        static std::unique_ptr<ZAV_UValDict> dict;
        if (step % 2500 == 0) dict.reset(new ZAV_UValDict(1));
        if (step % 500 == 0) std::setlocale(LC_CTYPE, locales[step / 500 % 4]);
        const std::string key = AnyKey(random);
        dict->SetCaseInsensitive(B_FALSE);
        switch (random() % 8) {
        case 0:
            dict->RemoveEntry(key.c_str());
            break;
        case 1:
            dict->ReSize(dict->GetSize() + static_cast<unsigned>(random() % 200));
            break;
        case 2:
            // Changed where it stands, and back: nothing but lookups may come between.
            if (ZAV_AssocUVal* entry = dict->GetNextAssoc(nullptr)) {
                const std::string before = entry->Key();
                dict->SetCaseInsensitive(B_TRUE);
                const std::string sought = "X" + key;
                entry->Key(("x" + key).c_str());
                EXPECT_EQ(dict->AssocAt(sought.c_str()), Walked(*dict, sought));
                entry->Key(before.c_str());
            }
            break;
        default:
            dict->SetEntry(key.c_str(), nullptr);
        }
        dict->SetCaseInsensitive(B_TRUE);
        for (int i = 0; i < 3; ++i) {
            const std::string sought = AnyKey(random);
            ZAV_AssocUVal* found = dict->AssocAt(sought.c_str());
            if (found && found->Key() == sought) continue;
            ASSERT_EQ(found, Walked(*dict, sought)) << step << sought;
        }
        if (step % 1000 == 999) dict->Clear();
    }
    std::setlocale(LC_CTYPE, "C");
}

TEST(KeyFold, TakesTheSameStepsForEachKeyHoweverManyThereAre) {
    const unsigned count = 20000;
    ZAV_UValDict dict, file;
    dict.SetCaseInsensitive(B_TRUE);
    for (unsigned i = 0; i < count; ++i) dict.SetUVal(("Key" + std::to_string(i)).c_str(), new ZAV_UValLong);
    for (unsigned i = 0; i < count; ++i)
        file.SetUVal(("kEY" + std::to_string(2 * i)).c_str(), new ZAV_UValLong);
    file.MoveTo(&dict);
    for (unsigned i = 0; i < count; i += 2) dict.RemoveEntry(("KEY" + std::to_string(i)).c_str());
    EXPECT_EQ(dict.GetSize(), count);
    EXPECT_LT(Steps(dict), 4 * count);
}

TEST(KeyFold, TakesAStepForManyKeysThatDifferInCaseOnly) {
    const unsigned count = 1 << 12;
    ZAV_UValDict dict;
    const auto variant = [](unsigned bits) {
        std::string key = "abcdefghijklm";
        for (size_t i = 0; i < key.size(); ++i)
            if (bits >> i & 1) key[i] = static_cast<char>(key[i] - 32);
        return key;
    };
    for (unsigned i = 0; i < count; ++i) dict.SetEntry(variant(i).c_str(), nullptr);
    dict.SetCaseInsensitive(B_TRUE);
    for (unsigned i = 0; i < count; ++i) ASSERT_NE(dict.AssocAt(variant(i + count).c_str()), nullptr);
    EXPECT_EQ(dict.AssocAt(variant(count).c_str()), Walked(dict, variant(count)));
    EXPECT_LT(Steps(dict), 4 * count);
}

// Two dictionaries looked through in turn, keys at random, and entries removed where the loop stands.
TEST(KeyOrder, TakesTheSameStepsForEachKeyHoweverManyThereAre) {
    const int count = 20000;
    ZAV_UValDict dict, other;
    for (int i = 0; i < count; ++i) {
        dict.SetEntry(("k" + std::to_string(i)).c_str(), nullptr);
        other.SetEntry(("x" + std::to_string(i)).c_str(), nullptr);
    }
    for (int i = 0; i < count; ++i) {
        const int at = static_cast<int>(i * 7919l % count);
        ASSERT_EQ(dict.GetKey(i), "k" + std::to_string(i));
        ASSERT_EQ(other.GetKey(at), "x" + std::to_string(at));
    }
    for (int i = 0; i < static_cast<int>(dict.GetSize()); ++i) {
        dict.RemoveEntry(dict.GetKey(i));
        ASSERT_EQ(dict.GetKey(i), "k" + std::to_string(2 * i + 1));
        const int last = static_cast<int>(other.GetSize()) - 1;
        if (i % 2) other.RemoveEntry(other.GetKey(last - i / 2));
    }
    for (ZAV_UValDict* d : {&dict, &other})
        EXPECT_LT(ZAV_DictHelp::IfAny(*d->GetValuePtr())->mOrder.Steps(), 3u * count);
}

} // namespace

// The slots of a hashed table, step by step against a literal model: probing down from the slot of the hash,
// and backward shifting on removal. What the library does to be faster must not show.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <bit>
#include <deque>
#include <random>

#include "tests/support/probe.h"

namespace {

/// The table as it is defined, without any help.
class TableModel {
public:
    explicit TableModel(uint32_t capacity) { Resize(capacity); }

    ZAV_CltObject* Add(ZAV_CltObject* o) {
        const uint32_t i = Find(o);
        if (mSlots[i]) return mSlots[i];
        mSlots[i] = o;
        if (++mCount > mSlots.size() / 2)
            Rehash(mSlots.size() < 4 ? 2 : static_cast<uint32_t>(mSlots.size()));
        return o;
    }

    ZAV_CltObject* Remove(ZAV_CltObject* o) {
        uint32_t hole = Find(o);
        ZAV_CltObject* removed = std::exchange(mSlots[hole], nullptr);
        for (uint32_t i = (hole - 1) & Mask(); mSlots[i]; i = (i - 1) & Mask()) {
            const uint32_t r = Home(mSlots[i]->Hash());
            if ((i <= r && r < hole) || (r < hole && hole < i) || (hole < i && i <= r)) continue;
            std::swap(mSlots[hole], mSlots[i]);
            hole = i;
        }
        --mCount;
        return removed;
    }

    void ReSize(uint32_t n) {
        if (n > mCount) Rehash(n);
    }

    ZAV_CltObject* Get(ZAV_CltObject* o) const { return mSlots[Find(o)]; }
    const std::vector<ZAV_CltObject*>& Slots() const { return mSlots; }
    uint32_t Count() const { return mCount; }

private:
    uint32_t Mask() const { return static_cast<uint32_t>(mSlots.size()) - 1; }

    uint32_t Home(uint32_t hash) const { return mNbits == 0 ? 0 : hash * 0x9E3779B9u >> (32 - mNbits); }

    uint32_t Find(ZAV_CltObject* o) const {
        uint32_t i = Home(o->Hash());
        while (mSlots[i] && !mSlots[i]->IsEqual(o)) i = (i - 1) & Mask();
        return i;
    }

    void Resize(uint32_t capacity) {
        mSlots.assign(capacity ? std::bit_ceil(capacity) * 2 : 1, nullptr);
        mNbits = static_cast<uint32_t>(std::bit_width(mSlots.size())) - 1;
        mCount = 0;
    }

    void Rehash(uint32_t capacity) {
        std::vector<ZAV_CltObject*> old = mSlots;
        Resize(capacity);
        for (ZAV_CltObject* o : old)
            if (o) Add(o);
    }

    std::vector<ZAV_CltObject*> mSlots;
    uint32_t mNbits = 0;
    uint32_t mCount = 0;
};

void ExpectSameSlots(const ZAV_Set& set, const TableModel& model) {
    ASSERT_EQ(model.Slots().size(), set.Capacity() * 2u + (model.Slots().size() == 1));
    ZAV_Iterator it(&set);
    for (size_t i = 0; i < model.Slots().size(); ++i) {
        ZAV_CltObject* o = model.Slots()[i];
        ASSERT_EQ(o ? o : GetNilObj(), set.At(static_cast<int>(i))) << "slot " << i;
        if (o) {
            ASSERT_EQ(o, ++it);
        }
    }
    ASSERT_EQ(nullptr, ++it);
    ASSERT_EQ(model.Count(), set.Size());
}

typedef std::deque<std::unique_ptr<ZAV_CltObject>> Objects;

ZAV_CltObject* Keep(Objects& parts, ZAV_CltObject* o) {
    parts.emplace_back(o);
    return o;
}

ZAV_CltObject* NewText(const std::string& text) { return new ZAV_CltString(text.c_str()); }

// Groups of 4 in any order have one hash. `i` picks the groups.
std::string SameHash(int i) {
    std::string a = "aaaa", b = "bbbb";
    for (unsigned k = 0; k < 4; ++k) {
        a[k] = static_cast<char>('a' + (i >> (4 * k) & 15));
        b[k] = static_cast<char>(a[k] ^ 0x10);
    }
    return a + b;
}

/// Makes the i-th key of a kind. Every kind is used with twice as many keys as its tables hold, each in two
/// equal objects.
const struct Kind {
    const char* name;
    int keys;
    std::function<ZAV_CltObject*(int i, Objects& parts)> make;
} kinds[] = {
    {"host objects", 1500, [](int i, Objects&) { return new Probe(i, static_cast<unsigned>(i % 97)); }},
    {"decimal texts", 6000, [](int i, Objects&) { return NewText(std::to_string(i * 7919)); }},
    {"texts of one hash", 9000, [](int i, Objects&) { return NewText(SameHash(i)); }},
    // 40 homes side by side in a table of 2^14 slots, at both its ends: one long cluster that goes round.
    {"numbers with neighbouring homes", 9000,
     [](int i, Objects&) {
         const uint32_t product = static_cast<uint32_t>(i % 40 - 20) << 18 | static_cast<uint32_t>(i);
         return new ZAV_Integer(static_cast<int32_t>(product * 0x144CBC89u)); // the inverse of the multiplier
     }},
    {"utf texts", 1500, [](int i, Objects&) { return new ZAV_CltUTFString(SameHash(i).c_str()); }},
    {"numbers", 3000, [](int i, Objects&) { return new ZAV_Integer(i % 2 ? i : i * 65536L); }},
    {"associations", 6000,
     [](int i, Objects& parts) { return new ZAV_Assoc(Keep(parts, NewText(std::to_string(i))), nullptr); }},
    // A bare number does not call itself equal to an association with that number; the other way it does.
    {"numbers, bare and held", 2000,
     [](int i, Objects& parts) -> ZAV_CltObject* {
         if (i % 3) return new ZAV_Integer(i / 3);
         return new ZAV_Assoc(Keep(parts, new ZAV_Integer(i / 3)), nullptr);
     }},
    {"numbers, a few of them held, too", 3000,
     [](int i, Objects& parts) -> ZAV_CltObject* {
         if (i % 300) return new ZAV_Integer(i);
         return new ZAV_Assoc(Keep(parts, new ZAV_Integer(i + 1)), nullptr);
     }},
    {"numbers with a late host object", 1500,
     [](int i, Objects&) -> ZAV_CltObject* {
         if (i != 1234) return new ZAV_Integer(i);
         return new Probe(i, 77u);
     }},
};

void RunBesideTheModel(const Kind& kind, uint32_t capacity) {
    SCOPED_TRACE(kind.name);
    Objects parts, keys;
    for (int copy = 0; copy < 2; ++copy)
        for (int i = 0; i < kind.keys; ++i) keys.emplace_back(kind.make(i, parts));
    std::mt19937 random(4711);
    auto any = [&] { return keys[random() % keys.size()].get(); };

    std::unique_ptr<ZAV_Set> set(new ZAV_Set(capacity));
    TableModel model(capacity);
    const int steps = kind.keys * 2;
    for (int step = 0; step < steps; ++step) {
        ZAV_CltObject* o = any();
        // A growing phase, a balanced one, and one that empties the table.
        const unsigned adds = step < steps / 2 ? 8 : step < steps * 3 / 4 ? 5 : 2;
        if (random() % 10 < adds) {
            ASSERT_EQ(model.Add(o), set->Add(o));
        } else if (model.Get(o)) {
            ASSERT_EQ(model.Remove(o), set->Remove(o));
        }
        ZAV_CltObject* sought = any();
        ZAV_CltObject* found = model.Get(sought);
        ASSERT_EQ(found ? found : GetNilObj(), set->FindObjectWithKey(sought));
        ASSERT_EQ(found ? 1u : 0u, set->OccurrencesOf(sought));
        if (step % (steps / 8) == 43) {
            const uint32_t n = static_cast<uint32_t>(random()) % (model.Count() * 3 + 1);
            model.ReSize(n);
            set->ReSize(n);
        }
        if (step % (steps / 8) == 45) set.reset(new ZAV_Set(*set));
        if (step % (steps / 8) == 47) {
            ZAV_Set other(7);
            other.Add(o);
            other = *set;
            other.ReSize(model.Count() + 1);
            model.ReSize(model.Count() + 1);
            *set = other;
        }
        if (step < 40 || step % (steps / 32) == 0) {
            ASSERT_NO_FATAL_FAILURE(ExpectSameSlots(*set, model)) << "step " << step;
        }
    }
    ASSERT_NO_FATAL_FAILURE(ExpectSameSlots(*set, model));
}

} // namespace

TEST(SetSlots, FollowTheModel) {
    const uint32_t capacities[] = {0, 1, 17, 4, 3, 5, 15, 2, 16, 2};
    for (size_t i = 0; i < std::size(kinds); ++i) RunBesideTheModel(kinds[i], capacities[i]);
}

TEST(SetSlots, AHostsOwnRuleIsObeyed) {
    // Finds its elements by walking up from the first slot.
    struct FirstFit : ZAV_Set {
        FirstFit() : ZAV_Set(16) {}
        int FindIndexOf(const ZAV_CltObject* o) const override {
            int i = 0;
            while (At(i) != GetNilObj() && !At(i)->IsEqual(o)) ++i;
            return i;
        }
    } set;
    Objects keys;
    for (int i = 0; i < 1000; ++i) set.Add(Keep(keys, NewText(std::to_string(i))));
    for (size_t i = 0; i < keys.size(); ++i) {
        ZAV_CltString again(std::to_string(i).c_str());
        ASSERT_EQ(keys[i].get(), set.FindObjectWithKey(&again));
        ASSERT_EQ(keys[i].get(), set.Add(&again));
    }
    EXPECT_EQ(1000u, set.Size());
}

TEST(SetSlots, ASlotStoredToByHandCounts) {
    Objects keys;
    ZAV_Set set(16);
    for (int i = 0; i < 700; ++i) set.Add(Keep(keys, NewText(std::to_string(i))));
    ZAV_CltString twin("123"), gone("456");
    for (int i = 0; i < static_cast<int>(set.Capacity() * 2); ++i) {
        ZAV_CltObject*& slot = set.At(i);
        if (slot != GetNilObj() && slot->IsEqual(&twin)) slot = &twin;
    }
    EXPECT_EQ(&twin, set.FindObjectWithKey(&twin));
    EXPECT_EQ(keys[456].get(), set.Remove(&gone));
    EXPECT_EQ(&twin, set.Remove(keys[123].get()));
    EXPECT_FALSE(set.Includes(&twin));
    EXPECT_EQ(698u, set.Size());
}

// A byte that the hash or the copy of a short key misses would make keys twins.
TEST(SetSlots, EveryByteOfAKeyCounts) {
    Objects keys;
    ZAV_Set set(16);
    for (size_t length = 41; length-- > 0;) {
        for (size_t at = 0; at <= length; ++at) {
            std::string text(length, 'a');
            if (at < length) text[at] = 'b';
            ZAV_CltObject* o = Keep(keys, NewText(text));
            ASSERT_EQ(o, set.Add(o)) << text;
        }
    }
}

// Enough keys of one length and one beginning that some share all 32 bits of any hash.
TEST(SetSlots, LongKeysAreComparedWhole) {
    Objects keys;
    ZAV_Set set(16);
    for (int i = 100000; i < 400000; ++i) {
        ZAV_CltObject* o = Keep(keys, NewText("a beginning of 30 characters  " + std::to_string(i)));
        ASSERT_EQ(o, set.Add(o));
    }
    EXPECT_EQ(300000u, set.Size());
}

// So the table can be full before the count says that it must grow.
TEST(SetSlots, RemovingWhatIsNotThereDropsTheCount) {
    for (int n : {0, 3, 800}) {
        Objects keys;
        ZAV_Set set(16);
        const auto fillTo = [&](int count) {
            while (static_cast<int>(keys.size()) < count)
                set.Add(Keep(keys, new ZAV_Integer(static_cast<long>(keys.size()))));
        };
        fillTo(n);
        ZAV_Integer absent(-1);
        for (int i = 0; i < 40; ++i) EXPECT_EQ(GetNilObj(), set.Remove(&absent));
        set.RemoveAndDestroy(&absent);
        EXPECT_EQ(static_cast<unsigned>(n) - 41, set.Size());
        fillTo(n + 40);
        ZAV_Iterator it(&set);
        for (int i = 0; i <= n + 40; ++i) EXPECT_EQ(i == n + 40, ++it == nullptr);
        for (const auto& key : keys) EXPECT_EQ(key.get(), set.FindObjectWithKey(key.get()));
    }
}

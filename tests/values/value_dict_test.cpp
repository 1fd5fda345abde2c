#include <gtest/gtest.h>

#include <random>

#include <tests/support/trace_capture.h>
#include <tests/values/text_support.h>

namespace {

/// A value of a host's own class that counts its destruction.
class Probe : public ZAV_UValLong {
public:
    explicit Probe(int& destroyed) : mDestroyed(destroyed) {}
    ~Probe() override { ++mDestroyed; }

private:
    int& mDestroyed;
};

/// A host's own value, of any type, that is none of the library's objects.
class HostValue : public ZAV_UVal {
public:
    explicit HostValue(int type, int dimension = 0)
        : ZAV_UVal(static_cast<ZAV_UValType>(type), UVAL_FAMILY_STRING) {
        mDimension = dimension;
    }
    ZAV_UVal* DeepCopy() override { return new HostValue(mType, mDimension); }
    void GetStrValue(ZAV_String& text, long index) override { text += index ? "more" : "host"; }
    long GetLongValue(long index) override { return 40 + index; }
    unsigned char GetUCharValue(long index) override { return static_cast<unsigned char>(40 + index); }
    double GetDoubleValue(long index) override { return 0.5 + static_cast<double>(index); }
    void PrintOn(std::ostream& os) override { os << "host"; }
};

ZAV_UVal* Number(long n) {
    ZAV_UValLong* value = new ZAV_UValLong;
    value->SetValue(n, 0);
    return value;
}

/// {a: {b: 1}} as "a{b=1}"; entries in their order.
std::string Show(const ZAV_UValDict& dict) {
    std::string text;
    for (ZAV_AssocUVal* e = dict.GetNextAssoc(nullptr); e; e = dict.GetNextAssoc(e)) {
        text += (text.empty() ? "" : " ") + std::string(e->Key());
        if (!e->Value())
            text += "!";
        else if (e->Value()->GetType() == UVAL_DICT)
            text += "{" + Show(static_cast<ZAV_UValDict&>(*e->Value())) + "}";
        else
            text += "=" + std::to_string(e->Value()->GetLongValue(0));
    }
    return text;
}

/// What "a:b=1 c=2" says.
void Fill(ZAV_UValDict& dict, const char* text) {
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t at = word.find('=');
        dict.SetUVal(word.substr(0, at).c_str(), Number(std::stol(word.substr(at + 1))));
    }
}

/// The dictionary at a path; the whole at the empty one.
ZAV_UValDict* In(ZAV_UValDict& dict, const char* path) {
    return *path ? static_cast<ZAV_UValDict*>(dict.GetUVal(path)) : &dict;
}

TEST(ValueDict, ValuesDieWhenTheyAreReplacedRemovedOrCannotBePlaced) {
    int destroyed = 0;
    ZAV_UValDict dict;
    ZAV_UVal* value = dict.SetUVal("a:x", new Probe(destroyed));
    for (const char* blocked : {"a:x:c", ""}) {
        TraceCapture trace(0x10);
        EXPECT_EQ(nullptr, dict.SetUVal(blocked, new Probe(destroyed)));
        EXPECT_EQ("SetUVal: uVal about to be deleted to avoid memory leaks (you shouldn't come here)\n",
                  trace.Text());
    }
    EXPECT_EQ(2, std::exchange(destroyed, 0));
    dict.SetUVal("a:x", value);
    EXPECT_EQ(0, destroyed) << "replaced by itself";
    dict.DefineUVal("a:x", UVAL_STRING);
    EXPECT_EQ(1, destroyed);
    EXPECT_FALSE(dict.DefineUVal("a:x", static_cast<ZAV_UValType>(13)) || dict.DefineUValDict("a:x"));
    dict.SetUVal("a:y", new Probe(destroyed));
    EXPECT_EQ(In(dict, "a"), dict.DefineUVal("a", UVAL_DICT));
    dict.RemoveUVal("a:y");
    EXPECT_EQ(2, destroyed);
    for (const char* above : {"a", "d"}) {
        dict.SetUVal("a:b:c", new Probe(destroyed));
        dict.SetUVal("d:e", new Probe(destroyed));
        dict.RemoveUVal(above);
    }
    EXPECT_EQ(5, destroyed);
    dict.Clear();
    EXPECT_EQ(6, destroyed);
}

TEST(ValueDict, AnEntryWithoutValueEndsAPathButDoesNotBlockIt) {
    ZAV_UValDict dict, other;
    dict.SetUVal("a", nullptr);
    EXPECT_FALSE(dict.GetUVal("a") || dict.SetUVal("a:b", Number(1)));
    dict.CopyTo(&other);
    EXPECT_EQ("", Show(other));
    EXPECT_EQ("a!", Show(ZAV_UValDict(dict)));
    EXPECT_EQ("    |- a<NULL>\na => <NULL>", Printed(dict) + Printed(*dict.AssocAt("a")));
    EXPECT_NE(nullptr, dict.DefineUValDict("a"));
    dict.SetUVal("n", nullptr);
    dict.RemoveUVal("n");
    EXPECT_EQ("a{}", Show(dict));
}

TEST(ValueDict, EveryWayToSayAPathAgrees) {
    ZAV_UValDict dict;
    const char* paths[] = {"a:b", "a:b:", ":x", "a::c", "::", "b"};
    long n = 0;
    for (const char* path : paths) dict.SetUVal(ZAV_DictPath(path), Number(++n));
    for (const char* path : paths) {
        EXPECT_EQ(dict.GetUVal(ZAV_DictPath(path)), dict.GetUVal(path)) << path;
        EXPECT_EQ(dict.GetUVal(ZAV_String(path)), dict.GetUVal(path)) << path;
    }
    EXPECT_EQ("a{b=2 {c=4}} {x=3 =5} b=6", Show(dict));
}

TEST(ValueDict, KeysAreCutToSixtyFourAndMayHoldTheSeparatorAsEntries) {
    ZAV_UValDict dict, moved, copied;
    const std::string key(70, 'k');
    dict.SetUVal(key.c_str(), Number(1));
    EXPECT_TRUE(dict.GetUVal(key.substr(0, 64).c_str()) && !dict.GetUVal(key.substr(0, 63).c_str()));
    EXPECT_EQ(dict.GetUVal(key.c_str()), dict.AssocAt(key.c_str())->Value());
    dict.SetEntry("a:b", Number(2));
    dict.SetEntry("", Number(3));
    dict.CopyTo(&copied);
    dict.MoveTo(&moved);
    EXPECT_EQ(0u, dict.GetSize());
    EXPECT_EQ(Show(copied), key.substr(0, 64) + "=1 a:b=2 =3");
    EXPECT_EQ(Show(copied), Show(moved));
    EXPECT_EQ(nullptr, moved.GetUVal("a:b"));
}

TEST(ValueDict, CaseIsIgnoredWhereTheDictionarySaysSo) {
    ZAV_UValDict dict, both;
    Fill(dict, "width=1 sub:Inner=2");
    Fill(both, "a=1 A=2 WIDTH=3");
    EXPECT_EQ(nullptr, dict.GetUVal("WIDTH"));
    dict.SetCaseInsensitive(B_TRUE);
    EXPECT_EQ(nullptr, dict.GetUVal("SUB:inner"));
    EXPECT_NE(nullptr, ZAV_UValDict(dict).GetUVal("SUB:Inner"));
    dict.SetUVal("Width", Number(4));
    EXPECT_EQ("width=4 sub{Inner=2}", Show(dict));
    both.CopyTo(&dict);
    EXPECT_EQ("width=3 sub{Inner=2} a=2", Show(dict));
    dict.Clear();
    both.CopyTo(&dict);
    EXPECT_EQ("a=2 WIDTH=3", Show(dict)) << "into an empty one, too";
}

TEST(ValueDict, AHostsOwnValuesAreAskedByTheirAccessors) {
    ZAV_UValDict dict, read, merged;
    const std::pair<int, int> kinds[] = {{UVAL_STRING, 0}, {UVAL_STRING, 2}, {UVAL_UTFSTRING, 0},
                                         {UVAL_LONG, 3},   {UVAL_UCHAR, 0},  {UVAL_DOUBLE, 2},
                                         {UVAL_PTR, 2}};
    for (const auto& [type, dimension] : kinds)
        dict.SetEntry(("k" + std::to_string(type) + std::to_string(dimension)).c_str(),
                      new HostValue(type, dimension));
    const std::string text = "<<\n/k100 (host) \n/k102 [ (host) (more) ]\n/k110 (host)  zavutfstring\n"
                             "/k63 [ 40 41 42  ]\n/k30 40 zavuchar\n/k92 [ 0.500000 1.500000  ]\n"
                             "/k122 [ 0 0  ] zavptr\n>>";
    EXPECT_EQ(Written(dict), text);
    unsigned char bytes[512], *end = bytes;
    EXPECT_EQ(ZAV_BinPackUValDict(dict).Put(&end, bytes + sizeof bytes), 0);
    const unsigned char* start = bytes;
    EXPECT_EQ(ZAV_BinPackUValDict(read).Get(&start, end), 0);
    EXPECT_EQ(Written(read), text);

    // A dictionary by its type alone is none, and a type of its own has no form in a file.
    for (int type : {static_cast<int>(UVAL_DICT), 99}) {
        dict.SetEntry("own", new HostValue(type));
        EXPECT_EQ(Written(dict), text);
        EXPECT_TRUE(
            Thrown<ZAV_BinPackException>([&] { ZAV_BinPackUValDict(dict).Put(&end, bytes + sizeof bytes); }));
        EXPECT_EQ(dict.GetUVal("own:x"), nullptr);
        Fill(merged, "own:x=1");
        dict.CopyTo(&merged);
        EXPECT_NE(Printed(merged).find("own => host"), std::string::npos);
        ZAV_ConfigInit(dict);
        EXPECT_EQ(ZAV_ConfigGet("own", "x", ""), nullptr);
        dict.MoveTo(&merged);
        EXPECT_EQ(dict.GetSize(), 0u);
        merged.MoveTo(&dict);
    }
    ZAV_ConfigCleanup();
    ZAV_I18nResource resource;
    resource.SetDefaultDefs(&dict);
    EXPECT_STREQ(resource.GetResource("k100", "").Ptr(), "host");
    EXPECT_STREQ(resource.GetResource("k110", "").Ptr(), "host");
}

/// Against a plain list: keys that collide in the table, with all the ways to change and to look. Now and
/// then the dictionary makes place for another, likely at the same address.
TEST(ValueDict, BehavesLikeAListOfPairs) {
    std::mt19937 random(4711);
    auto dict = std::make_unique<ZAV_UValDict>(1);
    std::vector<std::pair<std::string, long>> model;
    for (int step = 0; step < 6000; ++step) {
        const std::string key = "key" + std::to_string(random() % 300);
        auto at = std::find_if(model.begin(), model.end(), [&](auto& e) { return e.first == key; });
        if (step % 1000 == 999) {
            dict.reset();
            dict = std::make_unique<ZAV_UValDict>(1);
            model.clear();
        } else if (random() % 3 == 0) {
            dict->RemoveEntry(key.c_str());
            if (at != model.end()) model.erase(at);
        } else {
            dict->SetUVal(key.c_str(), Number(step));
            if (at == model.end()) at = model.insert(at, {key, step});
            at->second = step;
        }
        const int size = static_cast<int>(model.size());
        ASSERT_EQ(size, static_cast<int>(dict->GetSize()));
        for (int outside : {-1, size}) ASSERT_EQ(nullptr, dict->GetKey(outside));
        for (int look = 0; look < 3 && size > 0; ++look) {
            const int i = static_cast<int>(random() % model.size());
            const auto& [name, value] = model[static_cast<std::size_t>(i)];
            ASSERT_EQ(name, dict->GetKey(i));
            ASSERT_EQ(value, dict->GetValue(name.c_str(), -1L));
        }
    }
}

TEST(ValueDict, MergingTreesAndWithinOneTree) {
    const char nested[] = "s:s:s=5 s:s:t=6 s:u=7 v=8";
    const char* const rows[][5] = {
        {"f:a:b=1 t:a:c=2", "f", "t", "f{a{b=1}} t{a{c=2 b=1}}", "f{a{}} t{a{c=2 b=1}}"},
        {"f:a:b=1 f:x=2 t:a=5 t:y=6", "f", "t", "f{a{b=1} x=2} t{a{b=1} y=6 x=2}", "f{} t{a{b=1} y=6 x=2}"},
        {"f:a=1 t:a:b=2 t:c=3", "f", "t", "f{a=1} t{a=1 c=3}", "f{} t{a=1 c=3}"},
        {"f:a:b:c=1 f:a:b:d=2 f:a:e=3 t:a:b:d=4", "f:a", "t:a", "f{a{b{c=1 d=2} e=3}} t{a{b{d=2 c=1} e=3}}",
         "f{a{b{}}} t{a{b{d=2 c=1} e=3}}"},
        {nested, "", "", "s{s{s=5 t=6} u=7} v=8", "s{s{s=5 t=6} u=7} v=8"},
        {nested, "s", "", "s{s=5 u=7 t=6} v=8 u=7", "s{s=5 t=6} v=8 u=7"},
        {nested, "s:s", "s", "s{s=5 u=7 t=6} v=8", "s{s=5 u=7 t=6} v=8"},
        {nested, "", "s:s", "s{s{s{s{s=5 t=6} u=7} t=6 v=8} u=7} v=8", "s{s{s{s{s=5 t=6} u=7} t=6 v=8} u=7}"},
    };
    for (const auto& [tree, from, to, copied, moved] : rows) {
        ZAV_UValDict copying, moving;
        Fill(copying, tree);
        Fill(moving, tree);
        In(copying, from)->CopyTo(In(copying, to));
        In(moving, from)->MoveTo(In(moving, to));
        EXPECT_EQ(copied, Show(copying)) << tree << ": " << from << " -> " << to;
        EXPECT_EQ(moved, Show(moving)) << tree << ": " << from << " -> " << to;
    }
    ZAV_UValDict dict;
    Fill(dict, "a:b=1 a:c=2");
    dict = *In(dict, "a");
    dict.DefineUValDict("in");
    *In(dict, "in") = dict;
    EXPECT_EQ("b=1 c=2 in{b=1 c=2 in{}}", Show(dict));
}

TEST(ValueDict, MergingOneValue) {
    ZAV_UValDict from, to, blocked;
    Fill(from, "a:b=1 a:c:d=2 a:c:e=3");
    Fill(to, "a:c:d=9 x=1");
    Fill(blocked, "a=1");
    EXPECT_EQ(nullptr, from.CopyUValTo("a:missing", &to));
    EXPECT_EQ(to.GetUVal("a:c"), from.CopyUValTo("a:c", &to));
    EXPECT_EQ("a{c{d=2 e=3}} x=1", Show(to));
    ZAV_UVal* value = from.GetUVal("a:b");
    EXPECT_EQ(value, from.MoveUValTo("a:b", &to));
    EXPECT_EQ(to.GetUVal("a:b"), value);
    EXPECT_EQ(nullptr, from.MoveUValTo("a:c", &blocked));
    EXPECT_EQ("a{c{d=2 e=3}} | a=1", Show(from) + " | " + Show(blocked));
}

/// Deeper than any stack could follow.
TEST(ValueDict, DepthCostsNoStack) {
    ZAV_UValDict dict;
    const std::string path(200000, ':');
    dict.SetUVal(path.c_str(), Number(7));
    {
        ZAV_UValDict copy(dict), merged;
        copy.CopyTo(&merged);
        copy.MoveTo(&merged);
        EXPECT_EQ(7, merged.GetValue(path.c_str(), 0L));
        merged.MoveUValTo(":", &copy);
        copy.RemoveUVal(path.c_str());
        EXPECT_EQ(nullptr, copy.GetUVal(path.c_str()));
    }
    // Most of it would be blanks; what counts is that walking the tree ends.
    std::ostream nowhere(nullptr);
    nowhere << dict;
}

/// As a program writes the calls: that they compile, and mean what they say, is half of the test.
TEST(ValueDict, ElementsByPath) {
    ZAV_UValDict dict;
    const ZAV_String name("a:b");
    dict.SetUVal(name, Number(3));
    dict.DefineUVal("s", UVAL_UTFSTRING);
    dict.DefineUVal("n", UVAL_ULONG, 2, 0);
    dict.DefineUVal("p", UVAL_PTR);
    dict.SetValue("n", 0, 0);
    dict.SetValue("n", true);
    dict.SetValue(name, 'c', 0);
    dict.SetValue(name, std::size_t{3});
    const int i = dict.GetValue(name, 0, 0);
    const std::size_t size = dict.GetValue(name, std::size_t{0});
    const unsigned u = dict.GetValue(name, 0u);
    EXPECT_TRUE(i == 3 && size == 3 && u == 3 && dict.GetValue(name, B_FALSE) == B_TRUE);
    EXPECT_EQ(nullptr, dict.GetUVal(nullptr));
    dict.SetValue("n", 4294967295u, 1);
    dict.SetValue("n", "5", 1);
    dict.SetValue("missing", 1L);
    EXPECT_TRUE(dict.GetValue("s", 5L, 0) == 0 && dict.GetValue("missing", 5L, 0) == 5);
    EXPECT_EQ(4294967295ull, dict.GetValue("n", 0ull, 1)) << "which a text constant does not reach";
    EXPECT_EQ(nullptr, dict.GetValue("n", nullptr));
    EXPECT_STREQ("-1", dict.GetValue("n", ZAV_String("?"), 1).Ptr());
    EXPECT_STREQ("", dict.GetValue("s", "?"));
    dict.SetValue("s", ZAV_UTFString("\xE2\x82\xAC"));
    EXPECT_EQ(1u, dict.GetValue("s", ZAV_UTFString()).Length());
    dict.SetValue("p", static_cast<void*>(&dict));
    EXPECT_EQ(&dict, dict.GetValue("p", static_cast<void*>(nullptr)));
    dict.SetValue("p", nullptr, 0);
    EXPECT_EQ(nullptr, dict.GetValue("p", static_cast<void*>(&dict)));
}

TEST(ValueDict, EntriesHashByWholeWordsOnly) {
    ZAV_AssocUVal abcd("ABCD", nullptr), abcde("ABCDE", nullptr), abcdf("ABCDF", nullptr);
    EXPECT_EQ(4u ^ 0x44434241u, abcd.Hash());
    EXPECT_EQ(5u ^ 0x44434241u, abcde.Hash());
    EXPECT_EQ(abcde.Hash(), abcdf.Hash());
    EXPECT_FALSE(abcde.IsEqual(&abcdf));
    EXPECT_LT(abcde.Compare(&abcdf), 0);
}

TEST(CheckParam, WrongTypeOrMissingThrows) {
    ZAV_UValDict dict;
    Fill(dict, "a:n=1");
    const auto isRefused = [&](const char* path, auto type, boolean_t needed) {
        return Thrown<ZAV_ErrorException>([&] { ZAV_CheckParam(dict, path, type, needed, "x"); }) != nullptr;
    };
    EXPECT_EQ(dict.GetUVal("a:n"), ZAV_CheckParam(dict, "a:n", UVAL_LONG, B_TRUE, "x"));
    EXPECT_FALSE(isRefused("a:n", UVAL_FAMILY_NUMBER, B_FALSE) || isRefused("a:m", UVAL_LONG, B_FALSE));
    EXPECT_TRUE(isRefused("a:m", UVAL_LONG, B_TRUE) && isRefused("a:n", UVAL_SHORT, B_FALSE));
    EXPECT_TRUE(isRefused("a:n", UVAL_FAMILY_STRING, B_FALSE));
}

} // namespace

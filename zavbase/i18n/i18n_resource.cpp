#include <zavbase/i18n/i18n_resource.h>

#include <zavbase/collections/clt_string.h>
#include <zavbase/collections/iterator.h>
#include <zavbase/foundation/exception.h>
#include <zavbase/foundation/tracer.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict.h>
#include <zavbase/values/value_dict_internal.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

ZAV_DEFINE_CLASS(ZAV_I18nResource, ZAV_Object)

namespace {

constexpr char kDefaultDefs[] = "%$@#";

// The dictionaries in mDicts: they count the resources that share them, hold their texts as UTF-8 only, so
// that a text can be handed out by reference, and know their entries by a hash of the whole key. All is
// prepared when entries come in: threads that only look texts up change nothing.
class Texts : public ZAV_UValDict {
public:
    void Share() { ++mHolders; }
    bool Leave() { return --mHolders == 0; } // whether nobody is left

    /// Makes ready what has come from `defs`, which may be this itself. Others are not looked at, so that
    /// definitions may come one by one.
    void Prepare(ZAV_UValDict& defs);
    const ZAV_UTFString* Find(const ZAV_UTFString& id) const;

private:
    static const ZAV_UTFString* TextOf(ZAV_UVal* value);
    static void MakeUtf(ZAV_AssocUVal& entry);

    std::atomic<int> mHolders{1};
    void PutIndex(ZAV_AssocUVal& entry);

    std::unordered_map<std::string_view, const ZAV_UTFString*> mIndex;
};

const ZAV_UTFString* Texts::TextOf(ZAV_UVal* value) {
    if (!value || !ZAV_IsExactly<ZAV_UValUTFString>(*value)) return nullptr;
    return static_cast<ZAV_UValUTFString*>(value)->GetValuePtr(0);
}

void Texts::MakeUtf(ZAV_AssocUVal& entry) {
    ZAV_UVal& value = *entry.Value();
    if (value.GetFamily() != UVAL_FAMILY_STRING || ZAV_IsExactly<ZAV_UValUTFString>(value)) return;
    ZAV_String text;
    value.GetStrValue(text, 0);
    std::unique_ptr<ZAV_UValUTFString> utf(new ZAV_UValUTFString);
    utf->SetValue(ZAV_UTFString(text), 0);
    delete entry.Value(utf.release());
}

void Texts::PutIndex(ZAV_AssocUVal& entry) {
    const std::string_view key(entry.Key(), entry.KeyLength());
    if (const ZAV_UTFString* text = TextOf(entry.Value()))
        mIndex[key] = text;
    else
        mIndex.erase(key);
}

void Texts::Prepare(ZAV_UValDict& defs) {
    std::vector<std::pair<ZAV_UValDict*, ZAV_UValDict*>> open{
        {&defs, this}}; // may nest deeper than the stack
    while (!open.empty()) {
        const auto [from, to] = open.back();
        open.pop_back();
        for (ZAV_AssocUVal* e = from->GetNextAssoc(nullptr); e; e = from->GetNextAssoc(e)) {
            ZAV_AssocUVal* here = from == to ? e : to->AssocAt(e->Key(), e->KeyLength());
            if (!here || !here->Value()) continue;
            if (ZAV_IsDict(e->Value()) && ZAV_IsDict(here->Value()))
                open.emplace_back(static_cast<ZAV_UValDict*>(e->Value()),
                                  static_cast<ZAV_UValDict*>(here->Value()));
            else
                MakeUtf(*here);
            if (to == this) PutIndex(*here);
        }
    }
}

// An identifier is a path. The index serves those of one key, which is not so long that it would be cut.
const ZAV_UTFString* Texts::Find(const ZAV_UTFString& id) const {
    std::string_view key(id.Ptr());
    bool plain = !key.empty() && key.size() <= ZAV_AssocUVal::kMaxKeyLength &&
                 key.find(ZAV_DictPath::GetSeparator()) == key.npos;
    if (!plain) return TextOf(GetUVal(id.Ptr()));
    auto found = mIndex.find(key);
    return found == mIndex.end() ? nullptr : found->second;
}

// Looks a text up among ZAV_CltString keys without making one.
class TextKey : public ZAV_CltObject {
public:
    TextKey(const char* text, unsigned length) : mText(text), mLength(length) {}
    unsigned int Hash() const override { return ZAV_StringHash(mText, mLength); }
    boolean_t IsEqual(const ZAV_CltObject* o) override {
        const ZAV_String& key = *static_cast<const ZAV_CltString*>(o);
        return ZAV_Bool(key.Size() == mLength && std::memcmp(key.Ptr(), mText, mLength) == 0);
    }

private:
    const char* mText;
    unsigned mLength;
};

Texts* Held(const ZAV_Dictionary& dicts, const char* lang, unsigned length) {
    TextKey key(lang, length);
    ZAV_LookupKey* found = dicts.AssocAt(&key);
    return found ? static_cast<Texts*>(found->Value()) : nullptr;
}

Texts* HeldDefaults(const ZAV_Dictionary& dicts) {
    return Held(dicts, kDefaultDefs, sizeof kDefaultDefs - 1);
}

void ShareAll(const ZAV_Dictionary& from, ZAV_Dictionary& to) {
    ZAV_Iterator it(&from);
    while (ZAV_CltObject* o = ++it) {
        ZAV_LookupKey* entry = static_cast<ZAV_LookupKey*>(o);
        Texts* texts = static_cast<Texts*>(entry->Value());
        texts->Share();
        to.AddAssoc(new ZAV_CltString(*static_cast<ZAV_CltString*>(entry->Key())), texts);
    }
}

// Those that another resource still holds are taken out before the dictionary deletes what it has.
void LeaveAll(ZAV_DictAutoDel& dicts) {
    ZAV_Iterator it(&dicts);
    while (ZAV_CltObject* o = ++it) {
        ZAV_LookupKey* entry = static_cast<ZAV_LookupKey*>(o);
        if (!static_cast<Texts*>(entry->Value())->Leave()) entry->Value(nullptr);
    }
    dicts.ClearAndDestroy();
}

Texts* ReadLanguage(const ZAV_SystemString& base, const ZAV_String& lang) {
    std::unique_ptr<Texts> texts(new Texts);
    ZAV_String name(base.GetSystemString());
    name += ".";
    name += lang;
    ZAV_SystemString file(name);
    ZAV_TRY { texts->ReadFile(file); }
    ZAV_CATCH(ZAV_Exception, e) { ZAV_BASE_TRACE(0x1, "Error reading I18n file '" << file << "'"); }
    ZAV_CATCH_END
    texts->Prepare(*texts);
    return texts.release();
}

} // namespace

ZAV_I18nResource::ZAV_I18nResource() {}
ZAV_I18nResource::ZAV_I18nResource(const ZAV_SystemString& file) : mResourceFile(file) {}
ZAV_I18nResource::ZAV_I18nResource(const ZAV_I18nResource& other)
    : ZAV_Object(), mResourceFile(other.mResourceFile) {
    ShareAll(other.mDicts, mDicts);
}

ZAV_I18nResource::~ZAV_I18nResource() { LeaveAll(mDicts); }

ZAV_I18nResource& ZAV_I18nResource::operator=(const ZAV_I18nResource& other) {
    if (this == &other) return *this;
    mResourceFile = other.mResourceFile;
    LeaveAll(mDicts);
    ShareAll(other.mDicts, mDicts);
    return *this;
}

void ZAV_I18nResource::SetResourceFile(const ZAV_SystemString& file) { mResourceFile = file; }

void ZAV_I18nResource::SetDefaultDefs(ZAV_Object* defs) {
    if (!defs || !defs->IsKindOf(&ZAV_UValDict::classZAV_UValDict)) return;
    Texts* texts = HeldDefaults(mDicts);
    if (!texts) {
        texts = new Texts;
        mDicts.AddAssoc(new ZAV_CltString(kDefaultDefs), texts);
    }
    ZAV_UValDict& added = *static_cast<ZAV_UValDict*>(defs);
    added.CopyTo(texts);
    texts->Prepare(added);
}

const ZAV_UTFString& ZAV_I18nResource::GetResource(const ZAV_UTFString& id, const ZAV_String& lang) {
    return Lookup(id, lang.Ptr(), lang.Size());
}

const ZAV_UTFString& ZAV_I18nResource::Lookup(const ZAV_UTFString& id, const char* lang, unsigned length) {
    if (length > 0) {
        Texts* texts = Held(mDicts, lang, length);
        if (!texts) {
            ZAV_String name(lang, length);
            texts = ReadLanguage(mResourceFile, name);
            mDicts.AddAssoc(new ZAV_CltString(name), texts);
        }
        if (const ZAV_UTFString* text = texts->Find(id)) return *text;
    }
    Texts* defaults = HeldDefaults(mDicts);
    const ZAV_UTFString* text = defaults ? defaults->Find(id) : nullptr;
    return text ? *text : id;
}

boolean_t ZAV_IsPlainLangCode(const ZAV_String& lang) {
    std::string_view code(lang.Ptr(), lang.Size());
    if (code.empty() || code.size() > 64) return B_FALSE;
    if (code.back() == '.' || code.find("..") != code.npos) return B_FALSE;
    auto isAlphanumeric = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    };
    if (!isAlphanumeric(code[0])) return B_FALSE;
    for (char c : code)
        if (!isAlphanumeric(c) && std::string_view("_-@.").find(c) == code.npos) return B_FALSE;
    return B_TRUE;
}

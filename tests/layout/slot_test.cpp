// The virtual operations of the classes whose slot order is part of the contract. The destructor takes the
// first two slots of the table, so GetRuntimeClass stands in slot 2 of every class of the tree.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>

namespace {

/// The slot of a virtual member function: a pointer to one holds its byte offset in the table plus 1.
template <class Function>
int Slot(Function function) {
    struct Representation {
        ptrdiff_t entry, adjustment;
    };
    static_assert(sizeof(Function) == sizeof(Representation));
    ptrdiff_t entry = std::bit_cast<Representation>(function).entry;
    return entry & 1 ? static_cast<int>((entry - 1) / ptrdiff_t{sizeof(void*)}) : -1;
}

template <class... Functions>
void Consecutive(const char* name, int first, Functions... operations) {
    int expected = first;
    for (const int slot : {Slot(operations)...}) EXPECT_EQ(expected++, slot) << name;
}

#define SLOTS(NAME, ...)                                                                                     \
    do {                                                                                                     \
        using C = NAME;                                                                                      \
        Consecutive(#NAME, __VA_ARGS__);                                                                     \
    } while (0)

/// The overload with that signature.
template <class Signature, class C>
auto As(Signature C::*operation) {
    return operation;
}

using Clt = ZAV_CltObject;

} // namespace

TEST(Slots, ObjectsAndStrings) {
    SLOTS(ZAV_Object, 2, &C::GetRuntimeClass, &C::PrintOn, &C::DumpOn);
    SLOTS(ZAV_Exception, 5, &C::ToString);
    SLOTS(ZAV_Str, 2, &C::PrintOn);
}

TEST(Slots, Collections) {
    SLOTS(ZAV_CltObject, 5, &C::Species, &C::Size, &C::IsEqual, &C::Compare, &C::Hash);
    SLOTS(ZAV_LookupKey, 10, &C::ShallowCopy, &C::DeepenShallowCopy, As<Clt*(Clt*)>(&C::Key),
          As<Clt*() const>(&C::Key), As<Clt*(Clt*)>(&C::Value), As<Clt*() const>(&C::Value));
    SLOTS(ZAV_Integer, 10, &C::ShallowCopy, &C::DeepenShallowCopy);
    SLOTS(ZAV_CltString, 10, &C::ShallowCopy);
    SLOTS(ZAV_Collection, 10, &C::Add, &C::AddContentsTo, As<Clt*&(int)>(&C::At),
          As<Clt* const&(int) const>(&C::At), &C::DoNext, &C::Remove, &C::RemoveAndDestroy, &C::AddAll,
          &C::RemoveAll, &C::DeepenShallowCopy, &C::DoFinish, &C::DoReset, &C::Clear, &C::ClearAndDestroy,
          &C::Includes, &C::IsEmpty, &C::OccurrencesOf);
    SLOTS(ZAV_Set, 27, &C::ShallowCopy, &C::FindIndexOf, &C::Capacity, &C::FindObjectWithKey, &C::ReSize);
    SLOTS(ZAV_Dictionary, 32, &C::AddAssoc, &C::AddKeysTo, &C::AddValuesTo, &C::AssocAt,
          As<Clt*(const Clt*, Clt*)>(&C::AtKey), As<Clt*(const Clt*) const>(&C::AtKey), &C::IncludesAssoc,
          &C::IncludesKey, &C::KeyAtValue, &C::RemoveAssoc, &C::RemoveKey);
    SLOTS(ZAV_ArrayObj, 27, &C::ShallowCopy, &C::Capacity, &C::ReSize, &C::Sort);
    SLOTS(ZAV_SeqCltn, 27, &C::First, &C::Last, As<int(const Clt*) const>(&C::IndexOf),
          &C::IndexOfSubCollection, &C::ReplaceFrom);
}

TEST(Slots, Values) {
    SLOTS(ZAV_UVal, 10, &C::DeepCopy, &C::SetStrValue, &C::GetStrValue, &C::SetPtrValue, &C::GetPtrValue,
          &C::SetCharValue, &C::GetCharValue, &C::SetUCharValue, &C::GetUCharValue, &C::SetShortValue,
          &C::GetShortValue, &C::SetUShortValue, &C::GetUShortValue, &C::SetLongValue, &C::GetLongValue,
          &C::SetULongValue, &C::GetULongValue, &C::SetFloatValue, &C::GetFloatValue, &C::SetDoubleValue,
          &C::GetDoubleValue, &C::GetCStringValue, &C::GetSystemStringValue);
}

TEST(Slots, ThreadsAndEvents) {
    SLOTS(ZAV_Thread, 10, &C::StopThread, &C::MySignalHandler, &C::GetInfoString,
          As<void(char*)>(&C::SetInfoString), &C::run, &C::cleanup);
    SLOTS(ZAV_Event, 10, &C::EmergencyCleanup);
    SLOTS(ZAV_EvHandlerBody, 5, &C::HandleEvent);
    SLOTS(ZAV_EvHandlerHelper, 5, &C::SetMaster, &C::CheckEvent);
    SLOTS(ZAV_Listener, 10, &C::Listen, &C::Stop);
}

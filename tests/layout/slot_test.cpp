// The virtual operations of the classes whose slot order is part of the contract. The destructor takes the
// first two slots of the table, so GetRuntimeClass stands in slot 2 of every class of the tree.
#include <zavbase/zavbase.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <vector>

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

void Consecutive(const char* name, int first, const std::vector<int>& slots) {
    for (size_t i = 0; i < slots.size(); i++)
        EXPECT_EQ(first + static_cast<int>(i), slots[i]) << name << ", operation " << i;
}

using Clt = ZAV_CltObject;

template <class C>
using AtPlain = Clt*& (C::*)(int);
template <class C>
using AtConst = Clt* const& (C::*)(int) const;

} // namespace

TEST(Slots, ObjectProtocol) {
    Consecutive("ZAV_Object", 2,
                {Slot(&ZAV_Object::GetRuntimeClass), Slot(&ZAV_Object::PrintOn), Slot(&ZAV_Object::DumpOn)});
    Consecutive(
        "ZAV_CltObject", 5,
        {Slot(&Clt::Species), Slot(&Clt::Size), Slot(&Clt::IsEqual), Slot(&Clt::Compare), Slot(&Clt::Hash)});
    Consecutive("ZAV_Exception", 5, {Slot(&ZAV_Exception::ToString)});
    Consecutive("ZAV_Str", 2, {Slot(&ZAV_Str::PrintOn)});
    using Key = ZAV_LookupKey;
    Consecutive("ZAV_LookupKey", 10,
                {Slot(&Key::ShallowCopy), Slot(&Key::DeepenShallowCopy),
                 Slot(static_cast<Clt* (Key::*)(Clt*)>(&Key::Key)),
                 Slot(static_cast<Clt* (Key::*)() const>(&Key::Key)),
                 Slot(static_cast<Clt* (Key::*)(Clt*)>(&Key::Value)),
                 Slot(static_cast<Clt* (Key::*)() const>(&Key::Value))});
    Consecutive("ZAV_Integer", 10, {Slot(&ZAV_Integer::ShallowCopy), Slot(&ZAV_Integer::DeepenShallowCopy)});
    Consecutive("ZAV_CltString", 10, {Slot(&ZAV_CltString::ShallowCopy)});
}

TEST(Slots, Collections) {
    using C = ZAV_Collection;
    Consecutive("ZAV_Collection", 10,
                {Slot(&C::Add), Slot(&C::AddContentsTo), Slot(static_cast<AtPlain<C>>(&C::At)),
                 Slot(static_cast<AtConst<C>>(&C::At)), Slot(&C::DoNext), Slot(&C::Remove),
                 Slot(&C::RemoveAndDestroy), Slot(&C::AddAll), Slot(&C::RemoveAll),
                 Slot(&C::DeepenShallowCopy), Slot(&C::DoFinish), Slot(&C::DoReset), Slot(&C::Clear),
                 Slot(&C::ClearAndDestroy), Slot(&C::Includes), Slot(&C::IsEmpty), Slot(&C::OccurrencesOf)});
    using S = ZAV_Set;
    Consecutive("ZAV_Set", 27,
                {Slot(&S::ShallowCopy), Slot(&S::FindIndexOf), Slot(&S::Capacity),
                 Slot(&S::FindObjectWithKey), Slot(&S::ReSize)});
    using D = ZAV_Dictionary;
    Consecutive("ZAV_Dictionary", 32,
                {Slot(&D::AddAssoc), Slot(&D::AddKeysTo), Slot(&D::AddValuesTo), Slot(&D::AssocAt),
                 Slot(static_cast<Clt* (D::*)(const Clt*, Clt*)>(&D::AtKey)),
                 Slot(static_cast<Clt* (D::*)(const Clt*) const>(&D::AtKey)), Slot(&D::IncludesAssoc),
                 Slot(&D::IncludesKey), Slot(&D::KeyAtValue), Slot(&D::RemoveAssoc), Slot(&D::RemoveKey)});
    using A = ZAV_ArrayObj;
    Consecutive("ZAV_ArrayObj", 27,
                {Slot(&A::ShallowCopy), Slot(&A::Capacity), Slot(&A::ReSize), Slot(&A::Sort)});
    using Q = ZAV_SeqCltn;
    Consecutive("ZAV_SeqCltn", 27,
                {Slot(&Q::First), Slot(&Q::Last),
                 Slot(static_cast<int (Q::*)(const Clt*) const>(&Q::IndexOf)), Slot(&Q::IndexOfSubCollection),
                 Slot(&Q::ReplaceFrom)});
}

TEST(Slots, Values) {
    using V = ZAV_UVal;
    Consecutive("ZAV_UVal", 10,
                {Slot(&V::DeepCopy),        Slot(&V::SetStrValue),         Slot(&V::GetStrValue),
                 Slot(&V::SetPtrValue),     Slot(&V::GetPtrValue),         Slot(&V::SetCharValue),
                 Slot(&V::GetCharValue),    Slot(&V::SetUCharValue),       Slot(&V::GetUCharValue),
                 Slot(&V::SetShortValue),   Slot(&V::GetShortValue),       Slot(&V::SetUShortValue),
                 Slot(&V::GetUShortValue),  Slot(&V::SetLongValue),        Slot(&V::GetLongValue),
                 Slot(&V::SetULongValue),   Slot(&V::GetULongValue),       Slot(&V::SetFloatValue),
                 Slot(&V::GetFloatValue),   Slot(&V::SetDoubleValue),      Slot(&V::GetDoubleValue),
                 Slot(&V::GetCStringValue), Slot(&V::GetSystemStringValue)});
}

TEST(Slots, ThreadsAndEvents) {
    using T = ZAV_Thread;
    Consecutive("ZAV_Thread", 10,
                {Slot(&T::StopThread), Slot(&T::MySignalHandler), Slot(&T::GetInfoString),
                 Slot(static_cast<void (T::*)(char*)>(&T::SetInfoString)), Slot(&T::run), Slot(&T::cleanup)});
    Consecutive("ZAV_Event", 10, {Slot(&ZAV_Event::EmergencyCleanup)});
    Consecutive("ZAV_EvHandlerBody", 5, {Slot(&ZAV_EvHandlerBody::HandleEvent)});
    Consecutive("ZAV_EvHandlerHelper", 5,
                {Slot(&ZAV_EvHandlerHelper::SetMaster), Slot(&ZAV_EvHandlerHelper::CheckEvent)});
    Consecutive("ZAV_Listener", 10, {Slot(&ZAV_Listener::Listen), Slot(&ZAV_Listener::Stop)});
}

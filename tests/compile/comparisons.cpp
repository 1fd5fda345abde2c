// Every comparison of the public value classes, in both operand orders, with their own kind, with text and
// with each related class. That it compiles without a warning, with every compiler, is the first half of the
// test; the second is that all of them tell the same order. (Where a NUL makes == and != differ is tested
// with the strings.)
#include <zavbase/zavbase.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace {

int sWrong = 0;

void Expect(bool holds, const char* what) {
    if (holds) return;
    std::printf("wrong: %s\n", what);
    ++sWrong;
}

template <class A, class B>
bool HasEquality(const A& a, const B& b, bool equal) {
    return (a == b) == equal && (a != b) == !equal && (b == a) == equal && (b != a) == !equal;
}

// `order` is less than, equal to or greater than 0 as `a` is.
template <class A, class B>
bool HasOrder(const A& a, const B& b, int order) {
    return HasEquality(a, b, order == 0) && (a < b) == (order < 0) && (b > a) == (order < 0) &&
           (a > b) == (order > 0) && (b < a) == (order > 0) && (a <= b) == (order <= 0) &&
           (b >= a) == (order <= 0) && (a >= b) == (order >= 0) && (b <= a) == (order >= 0);
}

// Calls use(text) for each class that can hold the text, and for the text itself.
template <class Use>
void AsEachKind(const char* text, const Use& use) {
    const ZAV_String owner = ZAV_String("<") + text + ">";
    const ZAV_UTFString utfOwner(owner);
    const unsigned int length = owner.Length() - 2;
    use(ZAV_String(text));
    use(ZAV_UTFString(text));
    use(ZAV_CltString(text));
    use(ZAV_CltUTFString(text));
    use(owner(1, length));
    use(utfOwner(1, length));
    use(text);
}

template <class A, class B>
constexpr bool kPointers = std::is_pointer<A>::value&& std::is_pointer<B>::value;

void Texts() {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""}, {"", "x"}, {"x", "x"}, {"x", "xy"}, {"xz", "xy"}};
    for (const auto& row : rows) {
        const int order = std::strcmp(row.first, row.second);
        AsEachKind(row.first, [&](const auto& a) {
            AsEachKind(row.second, [&](const auto& b) {
                if constexpr (!kPointers<std::decay_t<decltype(a)>, std::decay_t<decltype(b)>>)
                    Expect(HasOrder(a, b, order), row.second);
            });
        });
    }
    AsEachKind("x", [](const auto& a) {
        if constexpr (!std::is_pointer<std::decay_t<decltype(a)>>::value)
            Expect(HasOrder(a, "y", -1) && HasOrder(a, nullptr, 1), "with a literal and with null");
    });
}

template <class Named>
void Names() {
    const Named name("x");
    AsEachKind("x", [&](const auto& text) { Expect(HasEquality(name, text, true), "a name and its text"); });
    AsEachKind("y",
               [&](const auto& text) { Expect(HasEquality(name, text, false), "a name and other text"); });
    Expect(HasEquality(name, "x", true), "a name and a literal");
}

// What the standard library does with values goes through the same operators, in its own namespace.
template <class Value>
void InContainers(const Value& a, const Value& b) {
    const std::vector<Value> both{a, b}, swapped{b, a};
    Expect(both == both && both != swapped, "vectors");
    Expect(std::find(both.begin(), both.end(), b) == both.begin() + 1, "find");
    Expect(std::make_pair(a, 1) == std::make_pair(a, 1) && std::make_pair(a, 1) != std::make_pair(b, 1),
           "pairs");
    const std::optional<Value> some(a), none;
    Expect(some == a && b != some && some != none && some == some, "optionals");
}

// Each order is looked at twice with the texts exchanged in place: were the addresses of the texts compared
// instead of the texts, one of the two would come out wrong.
template <class Text>
void InOrder() {
    const Text a("a"), b("b");
    InContainers(a, b);
    std::pair<Text, int> x(b, 1), y(a, 1);
    const bool before = y < x && x >= y;
    x.first = a;
    y.first = b;
    Expect(before && x < y && y >= x && (std::max)(x, y) == y, "orders of pairs");
    std::vector<Text> texts{b, a};
    std::sort(texts.begin(), texts.end());
    const std::map<Text, int> map{{a, 1}, {b, 2}};
    Expect(texts[0] == a && std::count(texts.begin(), texts.end(), "b") == 1, "sort and count");
    Expect(texts < std::vector<Text>{b} && map.find("b")->second == 2, "orders of containers");
#if defined(__cpp_impl_three_way_comparison)
    Expect((x.first <=> y.first) < 0 && (y.first <=> "a") > 0 && ("a" <=> x.first) == 0, "three ways");
#endif
}

void Others() {
    const ZAV_DictPath a("a:b"), b("a");
    Expect(HasEquality(a, b, false) && HasEquality(a, ZAV_DictPath(b, "b"), true), "paths");
    InContainers(a, b);
    const ZAV_Point p(1, 2), q(3, 4);
    Expect(HasOrder(p, q, -1) && HasOrder(p, ZAV_Point(p), 0), "points");
    InContainers(p, q);
    Expect(HasEquality(ZAV_Rect(p, q), ZAV_Rect(p, p), false), "rectangles");
    InContainers(ZAV_Rect(p, q), ZAV_Rect(p, p));
    const ZAV_Ref ref, copy(ref), other;
    Expect(ref.IsRefEqual(copy) && !ref.IsRefEqual(other) && ref.IsRefEqual(copy.GetBody()), "refs");
    const ZAV_SystemString name("x");
    Expect(HasOrder(name.GetSystemString(), "x", 0), "system strings, by their text");
    Expect(HasEquality(ZAV_Error(ERR_BASE_INTERNAL), ERR_BASE_INTERNAL, true), "errors, by their identifier");
    const ZAV_ThreadError good(0), bad(5);
    Expect(HasEquality(good, bad, false) && good == 0 && bad != 0L && !good, "thread errors");
    const ZAV_OrderedCltn list;
    const ZAV_Set set;
    const ZAV_Bag bag;
    const ZAV_Dictionary dict;
    Expect(list == ZAV_OrderedCltn() && set == ZAV_Set() && bag == ZAV_Bag() && dict == ZAV_Dictionary() &&
               !(list != list) && !(set != set) && !(bag != bag) && !(dict != dict),
           "collections");
}

} // namespace

int main() {
    Texts();
    Names<ZAV_DictPath>();
    Names<ZAV_I18nMsg>();
    Names<ZAV_Error>();
    InOrder<ZAV_String>();
    InOrder<ZAV_UTFString>();
    InOrder<ZAV_CltString>();
    InOrder<ZAV_CltUTFString>();
    Others();
    return sWrong == 0 ? 0 : 1;
}

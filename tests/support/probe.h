#ifndef ZAVBASE_TESTS_SUPPORT_PROBE_H
#define ZAVBASE_TESTS_SUPPORT_PROBE_H

#include <atomic>
#include <ostream>

#include <zavbase/collections/clt_object.h>

/// A collectable object that counts its living instances, so that a test can say when one must die. Equal and
/// ordered by its number; the hash can be given, to make objects collide.
class Probe : public ZAV_CltObject {
public:
    explicit Probe(int number) : Probe(number, static_cast<unsigned>(number)) {}
    Probe(int number, unsigned hash) : mNumber(number), mHash(hash) { ++Count(); }
    Probe(const Probe& p) : ZAV_CltObject(p), mNumber(p.mNumber), mHash(p.mHash) { ++Count(); }
    Probe& operator=(const Probe&) = default;
    ~Probe() override { --Count(); }

    static int Living() { return Count().load(); }
    int Number() const { return mNumber; }

    void PrintOn(std::ostream& os) override { os << "probe " << mNumber; }
    boolean_t IsEqual(const ZAV_CltObject* o) override {
        const Probe* p = dynamic_cast<const Probe*>(o);
        return ZAV_Bool(p && p->mNumber == mNumber);
    }
    int Compare(const ZAV_CltObject* o) const override {
        const Probe* p = dynamic_cast<const Probe*>(o);
        return p ? (mNumber > p->mNumber) - (mNumber < p->mNumber) : 0;
    }
    unsigned int Hash() const override { return mHash; }

private:
    static std::atomic<int>& Count() {
        static std::atomic<int> count{0};
        return count;
    }

    int mNumber;
    unsigned mHash;
};

/// The number of an object that is known to be a Probe.
inline int NumberOf(const ZAV_CltObject* o) { return static_cast<const Probe*>(o)->Number(); }

#endif

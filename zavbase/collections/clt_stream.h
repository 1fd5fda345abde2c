#ifndef ZAVBASE_COLLECTIONS_CLT_STREAM_H
#define ZAVBASE_COLLECTIONS_CLT_STREAM_H

#include <zavbase/collections/clt_object.h>

/// Holds a pointer to an input stream, not owned. Hashes by the pointer's low 32 bits; equal to nothing.
class ZAV_API ZAV_IStream : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_IStream)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_IStream)

    ZAV_IStream(std::istream* s) : mStream(s) {}
    ZAV_IStream(const ZAV_IStream& o) : ZAV_CltObject(o), mStream(o.mStream) {}
    ZAV_IStream& operator=(const ZAV_IStream& o);
    ~ZAV_IStream() override;

    std::istream* Stream() const { return mStream; }
    void Stream(std::istream* s) { mStream = s; }

    void PrintOn(std::ostream& os) override; ///< the pointer in hexadecimal; leaves `os` decimal
    unsigned int Hash() const override;

private:
    std::istream* mStream;
};

/// The same for an output stream.
class ZAV_API ZAV_OStream : public ZAV_CltObject {
    ZAV_DECLARE_CLASS(ZAV_OStream)
public:
    ZAV_DECLARE_CASTDOWN(ZAV_OStream)

    ZAV_OStream(std::ostream* s) : mStream(s) {}
    ZAV_OStream(const ZAV_OStream& o) : ZAV_CltObject(o), mStream(o.mStream) {}
    ZAV_OStream& operator=(const ZAV_OStream& o);
    ~ZAV_OStream() override;

    std::ostream* Stream() const { return mStream; }
    void Stream(std::ostream* s) { mStream = s; }

    void PrintOn(std::ostream& os) override; ///< the pointer in hexadecimal; leaves `os` decimal
    unsigned int Hash() const override;

private:
    std::ostream* mStream;
};

#endif

#ifndef ZAVBASE_PLATFORM_FILE_H
#define ZAVBASE_PLATFORM_FILE_H

#include <cstddef>

#include <zavbase/foundation/object.h>
#include <zavbase/strings/byte_string.h>
#include <zavbase/strings/system_string.h>

/// A named file that can be deleted. The object holds only the name: creating, copying or destroying it
/// touches no file. It belongs to one thread at a time.
class ZAV_API ZAV_File : public ZAV_Object {
    ZAV_DECLARE_CLASS(ZAV_File)

public:
    /// An empty name.
    ZAV_File();
    ZAV_File(const ZAV_SystemString& name);
    ZAV_File(const ZAV_File& other);
    ZAV_File& operator=(const ZAV_File& other);
    ~ZAV_File() override;

    /// Deletes the file; B_FALSE when the system refuses (no such file, no permission, a directory), and
    /// nothing is thrown or traced. What the system lets go differs: Linux also deletes files that are open
    /// or read-only, Windows refuses both.
    boolean_t RemoveFile();

private:
    ZAV_SystemString mName;
    /// A companion text that is copied with the object and that no operation reads.
    ZAV_String mInfo;
};

/// Replaces the contents of a file all at once, as the library writes its own files: a reader, or whoever
/// looks after a failure, finds the old contents or the new. Permissions stay, a link keeps pointing to the
/// file, a device or pipe is written to directly. Throws a ZAV_FileException* of code 4 (OpenWrError) when the
/// file cannot be opened for writing, of code 7 (WriteError) when the contents cannot be stored.
ZAV_API void ZAV_ReplaceFile(const ZAV_SystemString& name, const void* bytes, size_t size);

#endif

#ifndef ZAVBASE_OS_FILE_H
#define ZAVBASE_OS_FILE_H

#include <cstddef>
#include <cstdint>

namespace zav_os {

// Names are in the system's own encoding. Results are 0 or the system's error number.

uint32_t DeleteOneFile(const char* path);

/// The bytes of a file, with a NUL behind them that mSize does not count.
struct FileBytes {
    char* mData; ///< null after a failure
    size_t mSize;
    uint32_t mError = 0; ///< the system's number after a failure, which FreeFileBytes keeps; otherwise 0
};

enum ReadStatus { READ_DONE, READ_NOT_OPEN, READ_TOO_LARGE, READ_FAILED };

/// Reads a whole file. Only an ordinary file is opened: a directory, pipe or device is READ_NOT_OPEN, at
/// once. A file of more than `most` bytes, or more than memory holds, is READ_TOO_LARGE.
ReadStatus ReadWholeFile(const char* path, size_t most, FileBytes* bytes);
void FreeFileBytes(FileBytes* bytes);

/// Whether the name stands for something; a link that leads nowhere does not.
bool FileExists(const char* path);

/// Whether a replacement goes to the file behind a link, or takes the place of the link itself.
enum FileLinks { THROUGH_LINKS, NOT_THROUGH_LINKS };

/// New contents of a file, which appear all at once: they are written to a temporary beside it, which Commit
/// flushes and renames over it. A reader sees the old file or the new one; whatever fails leaves the old one
/// and no temporary. The file keeps its permissions, and a link keeps pointing to it. A name that is a device
/// or a pipe is written to directly.
class FileReplacement {
public:
    FileReplacement();
    ~FileReplacement(); ///< gives up what was not committed
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Fails where the file could not be opened for writing. Called once.
    uint32_t Open(const char* path, FileLinks links = THROUGH_LINKS);
    /// Whether an opened file is written to as it stands, so that what was written cannot be taken back.
    bool IsDirect() const { return !mTemporary; }
    /// Stores all `size` bytes or fails.
    uint32_t Write(const void* data, size_t size);
    uint32_t Commit();
    /// The same, but fails if by now anything stands there, be it a link.
    uint32_t CommitNew();

private:
    uint32_t Finish(bool mustBeNew);
    void Discard();

    char* mTarget;    // the file behind all links
    char* mTemporary; // null when the target is written directly
    intptr_t mHandle; // -1 when closed
};

} // namespace zav_os

#endif

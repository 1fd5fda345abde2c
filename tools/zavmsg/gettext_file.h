#ifndef ZAVMSG_GETTEXT_FILE_H
#define ZAVMSG_GETTEXT_FILE_H

#include <string>
#include <vector>

/// One translated message of a gettext file.
struct GettextEntry {
    std::string mContext;                   ///< empty without one
    std::string mSource;                    ///< the text to translate
    std::string mSourcePlural;              ///< empty without one
    std::vector<std::string> mTranslations; ///< one, or one a plural form; empty texts: not translated
    bool mIsFuzzy = false;                  ///< marked as in need of a check
};

/// Reads a gettext file, the text form (.po) or the compiled one (.mo, told by its first bytes), in UTF-8.
/// The header entry and withdrawn entries are left out. Returns an empty text, or what is wrong and where.
std::string ReadGettext(const std::string& bytes, std::vector<GettextEntry>& entries);

#endif

#ifndef ZAVTOOLS_CONSOLE_H
#define ZAVTOOLS_CONSOLE_H

/// While it lives, what is written to the console is taken for UTF-8; the console is then as it was.
class Utf8Console {
public:
    Utf8Console();
    ~Utf8Console();
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;

private:
    unsigned mFormer;
};

/// Whether the command line reached the program as it was typed: a Windows too old for the manifest of the
/// tools cuts it down to its code page.
bool IsCommandLineWhole();

#endif

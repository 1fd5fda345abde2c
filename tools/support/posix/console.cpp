#include "../console.h"

// Arguments, names and consoles are bytes here, in practice UTF-8.
Utf8Console::Utf8Console() : mFormer(0) {}
Utf8Console::~Utf8Console() {}

bool IsCommandLineWhole() { return true; }

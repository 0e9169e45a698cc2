// main's own arguments have lost what the narrow code page lacks; the wide command line has everything.
#include <windows.h>

#include <shellapi.h>

#include <memory>

#include "tools/wn/CommandLine.h"
#include "tools/wn/Texts.h"

namespace wn {
namespace {

struct LocalMemoryFree {
    void operator()(LPWSTR* memory) const { LocalFree(memory); }
};

}  // namespace

std::vector<std::string> Arguments(int argc, char** argv) {
    int count = 0;
    const std::unique_ptr<LPWSTR, LocalMemoryFree> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    if (!wide) return {argv, argv + argc};
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) arguments.push_back(ToUtf8(wide.get()[i]));
    return arguments;
}

// The console belongs to other programs too: they get back what they had.
Utf8Terminal::Utf8Terminal() : m_previous(GetConsoleOutputCP()) {
    if (m_previous != 0) SetConsoleOutputCP(CP_UTF8);
}

Utf8Terminal::~Utf8Terminal() {
    if (m_previous != 0) SetConsoleOutputCP(m_previous);
}

}  // namespace wn

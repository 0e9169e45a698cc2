// wnidl IN OUT: checks an interface description and writes the tables that a module holds as its type library.
//
// Exits with 0, or with 1 after one line on the standard error that names file, line and column and says what is
// wrong; nothing is written then.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "platform/typelib/idl/Description.h"

namespace {

using namespace wnplatform::typelib;

std::optional<std::string> ReadWhole(const char* path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (file.bad()) return std::nullopt;
    return text;
}

int Convert(const char* in, const char* out) {
    const std::optional<std::string> text = ReadWhole(in);
    if (!text) {
        std::fprintf(stderr, "%s: error: The file cannot be read.\n", in);
        return 1;
    }
    std::string blob;
    try {
        blob = Read(*text).Blob();
    } catch (const DescriptionError& error) {
        std::fprintf(stderr, "%s:%u:%u: error: %s\n", in, error.Where().line, error.Where().column, error.what());
        return 1;
    }
    std::ofstream file(out, std::ios::binary | std::ios::trunc);
    file << blob;
    file.close();
    if (!file) {
        // A part of a library must not pass for the whole one.
        std::remove(out);
        std::fprintf(stderr, "%s: error: The file cannot be written.\n", out);
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: wnidl IN OUT\n");
        return 1;
    }
    return Convert(argv[1], argv[2]);
}

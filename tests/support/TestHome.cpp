#include "tests/support/TestHome.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace wncom::test {

const std::string& ProgramFolder() {
    static const std::string folder = [] {
        std::string path(4096, '\0');
        path.resize(GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
        return std::filesystem::path(path).parent_path().string();
    }();
    return folder;
}

void WriteWholeFile(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

std::string ReadWholeFile(const std::string& path) {
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (file) text << file.rdbuf();
    return std::move(text).str();
}

}  // namespace wncom::test

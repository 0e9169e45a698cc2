#include <windows.h>

#include <algorithm>
#include <cstring>

#include "common/OpenKey.h"
#include "common/logging/LoggingInternals.h"

namespace wncom {
namespace {

// Whatever its type; false for a value that does not fit with its terminator. Null names the default value.
bool ReadText(const OpenKey& key, const char* name, char (&text)[kLoggingConfigBytes]) noexcept {
    const auto value = key.Read<kLoggingConfigBytes>(name);
    if (!value || !value.FitsTerminated()) return false;
    std::strcpy(text, value.c_str());
    return true;
}

// Skips white space and reads digits up to the first other character; 0 without digits. Of a number beyond 32 bits
// the low 32 bits are kept, and it stays beyond them.
std::uint64_t ReadNumber(const char* text) noexcept {
    constexpr std::uint64_t kBeyond = std::uint64_t{1} << 32;
    std::uint64_t number = 0;
    for (text += std::strspn(text, " \t\n\v\f\r"); *text >= '0' && *text <= '9'; ++text) {
        number = number * 10 + static_cast<unsigned>(*text - '0');
        if (number >= kBeyond) number = number % kBeyond + kBeyond;
    }
    return number;
}

// Ends the field at the next comma and returns the next field; null when there is no comma.
char* CutField(char* field) noexcept {
    char* comma = std::strchr(field, ',');
    if (!comma) return nullptr;
    *comma = '\0';
    return comma + 1;
}

std::uint8_t ReadLevel(const char* text) noexcept { return static_cast<std::uint8_t>(ReadNumber(text)); }

std::uint32_t ReadSizeLimit(const char* text) noexcept {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(ReadNumber(text), 0xFFFFFFFF));
}

}  // namespace

bool ReadLoggingConfig(const char* component, char (&configuration)[kLoggingConfigBytes]) noexcept {
    OpenKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck\\QBNorvel\\Logging") == ERROR_SUCCESS) {
        return ReadText(key, component, configuration) || ReadText(key, nullptr, configuration);
    }
    return key.Open(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck\\QBNorvel") == ERROR_SUCCESS &&
           ReadText(key, "Logging", configuration);
}

std::uint8_t ParseLoggingConfig(const char* configuration) noexcept {
    if (!configuration) return 0;
    char kind[kLoggingConfigBytes] = {};
    std::strncpy(kind, configuration, sizeof(kind) - 1);

    char* second = CutField(kind);
    if (!second) return 0;
    if (_stricmp(kind, "console") == 0) return InitLogging(ReadLevel(second), LogDestination::Console, nullptr, 0);
    if (_stricmp(kind, "debug") == 0) return InitLogging(ReadLevel(second), LogDestination::Debugger, nullptr, 0);
    if (_stricmp(kind, "file") != 0) return 0;

    char* third = CutField(second);
    if (!third) return 0;
    const char* fourth = CutField(third);
    if (!fourth) return InitLogging(ReadLevel(third), LogDestination::File, second, 0);
    return InitLogging(ReadLevel(fourth), LogDestination::SizedFile, second, ReadSizeLimit(third));
}

}  // namespace wncom

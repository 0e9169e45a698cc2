// One conversion of a message's format.
#pragma once

#include <cstddef>
#include <string_view>

#include "common/logging/LogLine.h"
#include "wncom/Logging.h"

namespace wncom {

struct LogConversion {
    static constexpr std::size_t kNoPrecision = static_cast<std::size_t>(-1);

    bool left = false;       // -
    bool zeros = false;      // 0
    bool plus = false;       // +
    bool space = false;      // a space
    bool alternate = false;  // #
    std::size_t width = 0;
    std::size_t precision = kNoPrecision;
    char type = 0;  // one of d i u x X o c p s S C %

    bool ForText() const noexcept { return type == 's' || type == 'S'; }
    // Reads the conversion that the text begins with. Returns its length in characters, 0 for an unknown conversion.
    // Length modifiers are read and forgotten: the argument knows its width.
    std::size_t Parse(std::string_view text) noexcept;
    // Appends the argument. If its type does not fit the conversion, it is written by its type.
    void Append(LogLine& line, const LogArgument& argument) const noexcept;

private:
    bool TakeFlag(char flag) noexcept;
    void AppendNumber(LogLine& line, const LogArgument& argument) const noexcept;
};

}  // namespace wncom

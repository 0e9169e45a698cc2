#include "platform/files/Reading.h"

#include <unistd.h>

#include <cerrno>

namespace wnplatform {

bool ReadToEnd(int descriptor, std::string& text) {
    char buffer[16384];
    for (;;) {
        const ssize_t count = pread(descriptor, buffer, sizeof buffer, static_cast<off_t>(text.size()));
        if (count == 0) return true;
        if (count > 0) {
            text.append(buffer, static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
}

}  // namespace wnplatform

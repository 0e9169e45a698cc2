#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "platform/core/Guarded.h"
#include "platform/files/Descriptor.h"
#include "platform/files/Writing.h"
#include "winbase.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

// Opened for each text: the file may be moved away meanwhile, and a host that watches it has no reason for haste.
Descriptor OutputFile(const char* path) {
    return Descriptor(
        open(HostPath(path).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666));
}

}  // namespace
}  // namespace wnplatform

void OutputDebugStringA(LPCSTR text) {
    if (!text || !*text) return;
    const DWORD error = GetLastError();
    wnplatform::Guarded(FALSE, [text] {
        const char* path = std::getenv("WNCOM_DEBUG_OUTPUT");
        wnplatform::Descriptor file;
        if (path && *path) file = wnplatform::OutputFile(path);
        // One write, so that the texts of several threads and processes do not mix.
        wnplatform::WriteAll(file ? file.Get() : STDERR_FILENO, text, std::strlen(text), true);
        return TRUE;
    });
    // Callers use it to report an error that they look at later.
    SetLastError(error);
}

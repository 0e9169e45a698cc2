// One of several writers of a log: log_peer NAME FOLDER. It logs numbered lines until the file "finish" appears in
// the folder; after the first ones it makes the file "started-NAME", and at its end "lines-NAME" with the number of
// its lines and of those that had to wait so long that the logger may have given them up.
#include <windows.h>

#include <fstream>
#include <string>

#include "wncom/Logging.h"

namespace {

constexpr int kFirstLines = 20;
constexpr int kMostLines = 200'000;  // should nobody end it
constexpr DWORD kLongWait = 400;     // milliseconds; the logger waits for 500

bool Exists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string name = argv[1];
    const std::string folder = argv[2];
    wncom::LogReference log;
    log.Start("LogPeer");
    int lines = 0;
    int waits = 0;
    for (; lines < kMostLines && !Exists(folder + "\\finish"); ++lines) {
        const DWORD start = GetTickCount();
        // Lines of many lengths, so that one inside another cannot go unseen.
        wncom::Log(3, "%s line %d %s\n", name.c_str(), lines,
                   std::string(static_cast<std::size_t>(lines % 97), '.').c_str());
        if (GetTickCount() - start >= kLongWait) ++waits;
        if (lines == kFirstLines) std::ofstream(folder + "\\started-" + name).put('s');
    }
    std::ofstream(folder + "\\lines-" + name) << lines << ' ' << waits;
    return 0;
}

// What a test process needs of its host: a fresh home, and a look at what was left behind.
#pragma once

#include <string>

namespace wncom::test {

// A new folder that is this process's home, and a registry without entries of earlier test processes.
std::string MakeHome();

// Takes back what MakeHome and the tests made, the folder too when it is not to be kept.
void RemoveHome(const std::string& path, bool keepFolder);

// Whether an exception that leaves a class object reaches the code that asked for the object. On Windows the system's
// own frames lie between the two, and no exception passes them.
#ifdef _WIN32
inline constexpr bool kExceptionsPassTheSystem = false;
#else
inline constexpr bool kExceptionsPassTheSystem = true;
#endif

// Sets a variable of the process's environment, or with null removes it.
void SetEnvironment(const char* name, const char* value);

// From now on, what the process sends to the debugger is appended to this file.
void CaptureDebugOutput(const std::string& path);

// Ends a child of this process at once, as a crash would. It must not have been waited for yet.
void KillProcess(unsigned long id);

// Where the host keeps the file that programs see at this path.
std::string HostPath(const std::string& path);

// The number of BSTRs alive in this process. Windows does not tell: it caches freed ones; there it is always 0.
long LiveTexts();

}  // namespace wncom::test

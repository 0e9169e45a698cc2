#include <pthread.h>
#include <sched.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/processes/ProcessObject.h"
#include "platform/processes/ProcessStart.h"

namespace wnplatform {
namespace {

// Both ids are asked for with every log line, and each would be a call into the kernel.
std::atomic<DWORD> g_process{0};
thread_local DWORD t_thread = 0;

void ForgetIds() {
    g_process.store(0, std::memory_order_relaxed);
    t_thread = 0;
}

const int g_forgetInForkedProcess = pthread_atfork(nullptr, nullptr, ForgetIds);

BOOL Start(const ProgramStart& start, PROCESS_INFORMATION& information) {
    pid_t id = 0;
    if (const DWORD error = StartProgram(start, id)) return Fail(error);
    Descriptor descriptor(static_cast<int>(syscall(SYS_pidfd_open, id, 0)));
    if (!descriptor && errno != ESRCH) {
        const DWORD error = ErrorFromErrno(errno);
        kill(id, SIGKILL);
        waitpid(id, nullptr, 0);
        return Fail(error);
    }
    const auto process = std::make_shared<Process>(std::move(descriptor));
    information.hProcess = AddObject(std::make_unique<ProcessObject>(process));
    information.hThread = AddObject(std::make_unique<ThreadObject>(process));
    information.dwProcessId = static_cast<DWORD>(id);
    information.dwThreadId = static_cast<DWORD>(id);
    return TRUE;
}

}  // namespace
}  // namespace wnplatform

using wnplatform::Fail;
using wnplatform::Guarded;
using wnplatform::ObjectUse;
using wnplatform::ProcessObject;

BOOL CreateProcessA(LPCSTR application, LPSTR commandLine, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL,
                    DWORD flags, LPVOID environment, LPCSTR directory, STARTUPINFOA* startup,
                    PROCESS_INFORMATION* information) {
    return Guarded(FALSE, [&] {
        if ((!application && !commandLine) || !startup || !information) return Fail(ERROR_INVALID_PARAMETER);
        *information = {};
        return wnplatform::Start(
            {application, commandLine, (flags & DETACHED_PROCESS) != 0, static_cast<LPCSTR>(environment), directory},
            *information);
    });
}

BOOL GetExitCodeProcess(HANDLE handle, LPDWORD exitCode) {
    const ObjectUse<ProcessObject> object(handle);
    if (!object) return FALSE;
    if (!exitCode) return Fail(ERROR_INVALID_PARAMETER);
    *exitCode = object->process->ExitCode();
    return TRUE;
}

DWORD GetCurrentProcessId() {
    DWORD id = wnplatform::g_process.load(std::memory_order_relaxed);
    if (id == 0) {
        id = static_cast<DWORD>(getpid());
        wnplatform::g_process.store(id, std::memory_order_relaxed);
    }
    return id;
}

DWORD GetCurrentThreadId() {
    if (wnplatform::t_thread == 0) wnplatform::t_thread = static_cast<DWORD>(gettid());
    return wnplatform::t_thread;
}

void Sleep(DWORD milliseconds) {
    if (milliseconds == 0) {
        sched_yield();
        return;
    }
    timespec left{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1'000'000};
    while ((nanosleep(&left, &left) != 0 && errno == EINTR) || milliseconds == INFINITE) {
    }
}

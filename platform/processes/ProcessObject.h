// A process that this one started.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/core/Handles.h"
#include "platform/files/Descriptor.h"

namespace wnplatform {

// Its exit status is fetched from the host as soon as it is asked for, so that no ended process stays behind; one
// that still runs when nobody asks any more is waited for in the background.
class Process {
public:
    // The descriptor is the host's for the process; without one it has ended unseen.
    explicit Process(Descriptor descriptor) noexcept : m_descriptor(std::move(descriptor)) {}
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    DWORD Wait(DWORD milliseconds) noexcept;
    // The exit status, STILL_ACTIVE while it runs. A program that a signal ended has 128 plus the signal's number.
    DWORD ExitCode() noexcept;

private:
    bool HasEnded() noexcept;

    const Descriptor m_descriptor;
    std::mutex m_lock;
    std::optional<DWORD> m_exitCode;  // guarded by m_lock
};

class ProcessObject final : public KernelObject {
public:
    static constexpr ObjectKind kKind = ObjectKind::Process;

    explicit ProcessObject(std::shared_ptr<Process> started) noexcept
        : KernelObject(kKind), process(std::move(started)) {}
    DWORD Wait(DWORD milliseconds) noexcept override { return process->Wait(milliseconds); }

    const std::shared_ptr<Process> process;
};

// The first thread of a process, which ends with it.
class ThreadObject final : public KernelObject {
public:
    static constexpr ObjectKind kKind = ObjectKind::Thread;

    explicit ThreadObject(std::shared_ptr<Process> started) noexcept
        : KernelObject(kKind), m_process(std::move(started)) {}
    DWORD Wait(DWORD milliseconds) noexcept override { return m_process->Wait(milliseconds); }

private:
    std::shared_ptr<Process> m_process;
};

}  // namespace wnplatform

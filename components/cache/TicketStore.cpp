#include "components/cache/TicketStore.h"

#include <chrono>
#include <memory>
#include <mutex>

#include "common/Guard.h"
#include "common/Owned.h"
#include "components/cache/DatabaseFile.h"
#include "components/cache/TicketDatabase.h"

namespace wncom::components {
namespace {

using Kind = DatabaseProblem::Kind;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPatience(1500);
constexpr DWORD kPause = 2;  // between two tries, in milliseconds
constexpr const char* kMutexName = "QBNORVEL.XMLCacheMgr";

std::int64_t Now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
}

[[noreturn]] void FailBusy() {
    throw DatabaseProblem(Kind::Busy, HRESULT_FROM_WIN32(ERROR_LOCK_VIOLATION), "the database is busy");
}

void Tell(const std::string& path, const std::string& what) {
    OutputDebugStringA(("XMLCacheMgr: " + path + ": " + what + "\n").c_str());
}

// Keeps every process from opening a database while one of them moves it away: a connection made in between could
// join the files of two databases.
class OpeningLock {
public:
    explicit OpeningLock(Clock::time_point deadline) : m_mutex(MakeMutex()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        const DWORD wait =
            m_mutex ? WaitForSingleObject(m_mutex.get(), left > 0 ? static_cast<DWORD>(left) : 0) : WAIT_FAILED;
        if (wait == WAIT_TIMEOUT) FailBusy();
        if (wait == WAIT_FAILED) throw Problem(HRESULT_FROM_WIN32(GetLastError()), "the named mutex cannot be taken");
    }
    OpeningLock(const OpeningLock&) = delete;
    OpeningLock& operator=(const OpeningLock&) = delete;
    ~OpeningLock() { ReleaseMutex(m_mutex.get()); }

private:
    // For every user who shares the cache: by default only its first user could open it.
    static HANDLE MakeMutex() noexcept {
        SECURITY_DESCRIPTOR everyone;
        SECURITY_ATTRIBUTES security = {sizeof(security), &everyone, FALSE};
        InitializeSecurityDescriptor(&everyone, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&everyone, TRUE, nullptr, FALSE);
        return CreateMutexA(&security, FALSE, kMutexName);
    }

    OwnedHandle m_mutex;
};

// A journal of a killed writer goes with its database: it would be taken for the next one's.
void MoveAway(const std::string& path, const std::string& aside) {
    for (const char* part : {"", "-journal"}) {
        if (MoveFileExA((path + part).c_str(), (aside + part).c_str(), MOVEFILE_REPLACE_EXISTING)) continue;
        const DWORD error = GetLastError();
        if (*part && error == ERROR_FILE_NOT_FOUND) {
            // What an earlier database left there is none of this one's.
            DeleteFileA((aside + part).c_str());
            continue;
        }
        throw Problem(HRESULT_FROM_WIN32(error), "the damaged database cannot be moved to " + aside);
    }
}

class Store {
public:
    // Runs operation(TicketDatabase&) until it succeeds, fails for good, or time runs out.
    template <class Operation>
    HRESULT Perform(const std::string& path, Operation operation) noexcept {
        return Guarded([&]() -> HRESULT {
            const Clock::time_point deadline = Clock::now() + kPatience;
            for (;; Sleep(kPause)) {
                try {
                    return Try(path, deadline, operation);
                } catch (const DatabaseProblem& problem) {
                    if (problem.kind() == Kind::Busy && Clock::now() < deadline) continue;
                    Tell(path, problem.what());
                    return problem.status();
                } catch (const Problem& problem) {
                    Tell(path, problem.what());
                    return problem.status();
                }
            }
        });
    }

private:
    template <class Operation>
    HRESULT Try(const std::string& path, Clock::time_point deadline, Operation operation) {
        const std::unique_lock lock(m_section, std::try_to_lock);
        if (!lock) FailBusy();
        try {
            return operation(Open(path, deadline));
        } catch (const DatabaseProblem& problem) {
            if (problem.kind() != Kind::Damaged) throw;
        }
        // Another process may have replaced it meanwhile, so it is judged anew where nobody can.
        const OpeningLock opening(deadline);
        m_database.reset();
        try {
            return operation(Open(path, deadline));
        } catch (const DatabaseProblem& problem) {
            if (problem.kind() != Kind::Damaged) throw;
            m_database.reset();
            const std::string aside = path + ".damaged";
            MoveAway(path, aside);
            Tell(path, std::string("the database is damaged (") + problem.what() + "); it is kept as " + aside +
                           " and replaced");
        }
        return operation(Open(path, deadline));
    }

    TicketDatabase& Open(const std::string& path, Clock::time_point deadline) {
        if (m_database && path == m_path && !m_database->Moved()) return *m_database;
        m_database.reset();
        const OpeningLock opening(deadline);
        m_database = std::make_unique<TicketDatabase>(DatabaseFile(path));
        m_path = path;
        return *m_database;
    }

    std::mutex m_section;
    std::unique_ptr<TicketDatabase> m_database;
    std::string m_path;
};

Store g_store;

}  // namespace

HRESULT PutTicket(const std::string& path, WideView key, WideView ticket, LONG seconds) noexcept {
    return g_store.Perform(path, [&](TicketDatabase& database) {
        database.Put(key, ticket, Now(), seconds);
        return S_OK;
    });
}

HRESULT FetchTicket(const std::string& path, WideView key, Bstr& ticket) noexcept {
    return g_store.Perform(path, [&](TicketDatabase& database) {
        ticket = database.Fetch(key, Now());
        return ticket ? S_OK : S_FALSE;
    });
}

HRESULT RemoveTicket(const std::string& path, WideView key) noexcept {
    return g_store.Perform(path, [&](TicketDatabase& database) { return database.Remove(key) ? S_OK : S_FALSE; });
}

}  // namespace wncom::components

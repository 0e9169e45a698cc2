// One open database of tickets, over SQLite.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>

#include "common/CodePageText.h"
#include "components/Problem.h"
#include "wncom/Bstr.h"

namespace wncom::components {

class DatabaseProblem : public Problem {
public:
    enum class Kind {
        Busy,     // another one is writing: worth another try
        Damaged,  // the file does not hold what was stored
        Other,
    };
    DatabaseProblem(Kind kind, HRESULT status, const std::string& what) : Problem(status, what), m_kind(kind) {}
    Kind kind() const noexcept { return m_kind; }

private:
    Kind m_kind;
};

// A connection for one thread at a time. Any number of connections of any processes may have the file open; what one
// of them stored, all see. The file may be removed or replaced while no connection is writing. Times are in seconds
// of the Unix epoch. Everything throws DatabaseProblem, and std::bad_alloc.
class TicketDatabase {
public:
    // Opens the file, or makes it; a file that is another program's database is left alone. The path is the host's,
    // in UTF-8.
    explicit TicketDatabase(const std::string& hostPath);

    // True when the path now leads to another file than the open one, or to none.
    bool Moved() const noexcept;

    // Replaces what is under the key, and removes some of what has expired. All of it happens, or nothing.
    void Put(WideView key, WideView ticket, std::int64_t now, LONG seconds);
    // Null when there is no ticket under the key, or one that has expired or was stored later than now.
    Bstr Fetch(WideView key, std::int64_t now);
    // False when there was none.
    bool Remove(WideView key);

private:
    struct Close {
        void operator()(sqlite3* database) const noexcept { sqlite3_close(database); }
    };
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;
    class Run;
    class Transaction;

    void Prepare(const char* sql, Statement& statement);
    void Execute(const char* sql);
    std::int64_t Number(const char* sql);
    void RequireOurs();
    void Create();

    std::unique_ptr<sqlite3, Close> m_database;
    // Closed before the database.
    Statement m_put;
    Statement m_fetch;
    Statement m_remove;
    Statement m_clean;
};

}  // namespace wncom::components

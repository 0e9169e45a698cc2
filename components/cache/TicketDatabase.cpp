#include "components/cache/TicketDatabase.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <numeric>

namespace wncom::components {
namespace {

using Kind = DatabaseProblem::Kind;

[[noreturn]] void Fail(int code, const std::string& what) {
    switch (code & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw DatabaseProblem(Kind::Busy, HRESULT_FROM_WIN32(ERROR_LOCK_VIOLATION), what);
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_ERROR:  // the statements are fixed, so a table that they need is gone
            throw DatabaseProblem(Kind::Damaged, HRESULT_FROM_WIN32(ERROR_INVALID_DATA), what);
        case SQLITE_NOMEM:
            throw std::bad_alloc();
        case SQLITE_TOOBIG:
            throw DatabaseProblem(Kind::Other, E_INVALIDARG, what);
        case SQLITE_FULL:
            throw DatabaseProblem(Kind::Other, HRESULT_FROM_WIN32(ERROR_DISK_FULL), what);
        case SQLITE_READONLY:
            // Removed or replaced since it was opened: the next try opens what is there now.
            if (code == SQLITE_READONLY_DBMOVED) {
                throw DatabaseProblem(Kind::Busy, HRESULT_FROM_WIN32(ERROR_LOCK_VIOLATION), what);
            }
            [[fallthrough]];
        case SQLITE_PERM:
            throw DatabaseProblem(Kind::Other, E_ACCESSDENIED, what);
        default:
            throw DatabaseProblem(Kind::Other, E_FAIL, what);
    }
}

void Check(sqlite3* database, int code) {
    if (code != SQLITE_OK) Fail(code, sqlite3_errmsg(database));
}

// Of bytes: every change of a single word changes the result, for each step is reversible. Several lanes, because
// each step has to wait for the one before it.
class Checksum {
public:
    void Add(const void* bytes, std::size_t size) noexcept {
        const auto* at = static_cast<const char*>(bytes);
        AddWord(size);
        for (; size >= kLanes * kWord; size -= kLanes * kWord) {
            for (std::uint64_t& lane : m_lanes) {
                lane = Mixed(lane, Word(at, kWord));
                at += kWord;
            }
        }
        while (size != 0) {
            const std::size_t part = std::min(size, kWord);
            AddWord(Word(at, part));
            at += part;
            size -= part;
        }
    }
    void AddWord(std::uint64_t word) noexcept { m_lanes[0] = Mixed(m_lanes[0], word); }
    std::int64_t value() const noexcept {
        return static_cast<std::int64_t>(std::accumulate(m_lanes.begin(), m_lanes.end(), std::uint64_t{0}, Mixed));
    }

private:
    static constexpr std::size_t kLanes = 4;
    static constexpr std::size_t kWord = sizeof(std::uint64_t);

    static std::uint64_t Word(const char* bytes, std::size_t size) noexcept {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, size);
        return word;
    }
    static std::uint64_t Mixed(std::uint64_t value, std::uint64_t word) noexcept {
        value = (value ^ word) * 0x9E3779B97F4A7C15U;
        return value ^ value >> 32;
    }

    std::array<std::uint64_t, kLanes> m_lanes = {};
};

// SQLite finds damage in what holds its tables together, not in what the tables hold.
std::int64_t ChecksumOf(WideView key, std::int64_t stored, std::int64_t expires, const void* ticket,
                        std::size_t size) {
    Checksum checksum;
    checksum.Add(key.data(), key.size() * sizeof(OLECHAR));
    checksum.AddWord(static_cast<std::uint64_t>(stored));
    checksum.AddWord(static_cast<std::uint64_t>(expires));
    checksum.Add(ticket, size);
    return checksum.value();
}

// Keys and tickets are kept as the bytes of their UTF-16: as text they would have to be well-formed.
constexpr const char* kSchema =
    "CREATE TABLE ticket(key BLOB NOT NULL PRIMARY KEY, stored INTEGER NOT NULL, expires INTEGER NOT NULL,"
    " checksum INTEGER NOT NULL, content BLOB NOT NULL);"
    "CREATE INDEX ticket_stored ON ticket(stored);"
    "CREATE INDEX ticket_expires ON ticket(expires);"
    "PRAGMA application_id=1465404739;";
constexpr std::int64_t kApplicationId = 1465404739;  // "WXMC"

constexpr int kCommitPatience = 100;  // in milliseconds

// Who waited for the database has asked the clock before those who used it meanwhile: their tickets are no sign of a
// clock that was set back. In seconds; the cleaning statement has the same.
constexpr std::int64_t kSlack = 2;

}  // namespace

// One execution of a prepared statement.
class TicketDatabase::Run {
public:
    Run(sqlite3* database, const Statement& statement) : m_database(database), m_statement(statement.get()) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() {
        sqlite3_reset(m_statement);
        sqlite3_clear_bindings(m_statement);
    }

    // The text must live as long as the run.
    void Bind(int index, WideView text) {
        // A null pointer would be bound as NULL.
        const void* bytes = text.empty() ? static_cast<const void*>("") : text.data();
        Check(m_database,
              sqlite3_bind_blob64(m_statement, index, bytes, text.size() * sizeof(OLECHAR), SQLITE_STATIC));
    }
    void Bind(int index, std::int64_t number) { Check(m_database, sqlite3_bind_int64(m_statement, index, number)); }
    // True when there is a row.
    bool Step() {
        const int code = sqlite3_step(m_statement);
        if (code == SQLITE_ROW) return true;
        if (code == SQLITE_DONE) return false;
        Fail(code, sqlite3_errmsg(m_database));
    }
    std::int64_t Number(int column) { return sqlite3_column_int64(m_statement, column); }
    const void* Bytes(int column) { return sqlite3_column_blob(m_statement, column); }
    // After Bytes of the same column.
    std::size_t Size(int column) { return static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)); }

private:
    sqlite3* m_database;
    sqlite3_stmt* m_statement;
};

// Undone unless committed.
class TicketDatabase::Transaction {
public:
    explicit Transaction(TicketDatabase& database) : m_database(database) { database.Execute("BEGIN IMMEDIATE"); }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction() {
        // Some failures have undone it already.
        sqlite3* database = m_database.m_database.get();
        if (!sqlite3_get_autocommit(database)) sqlite3_exec(database, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    void Commit() { m_database.Execute("COMMIT"); }

private:
    TicketDatabase& m_database;
};

TicketDatabase::TicketDatabase(const std::string& hostPath) {
    sqlite3* opened = nullptr;
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    const int code = sqlite3_open_v2(hostPath.c_str(), &opened, kFlags, nullptr);
    m_database.reset(opened);
    if (!opened) throw std::bad_alloc();
    Check(opened, code);
    RequireOurs();
    // What the columns hold as bytes can then be looked at as text. Counts for a new file only.
    Execute("PRAGMA encoding='UTF-16le'");
    // The journal is there only while something is written, so whoever removes or replaces the file leaves nothing
    // behind that would be applied to the next one; a log and its index beside the file would be. What a killed
    // writer began, the next reader undoes. Nothing is forced to the disk: a failure of the machine may cost the
    // cache.
    Execute("PRAGMA journal_mode=DELETE; PRAGMA synchronous=OFF;");
    // A commit waits for its readers: begun anew each time, it might never find a moment without one.
    sqlite3_busy_timeout(opened, kCommitPatience);
    if (Number("PRAGMA application_id") == 0) Create();
    Prepare("INSERT OR REPLACE INTO ticket(key, stored, expires, checksum, content) VALUES(?1, ?2, ?3, ?4, ?5)",
            m_put);
    Prepare("SELECT stored, expires, checksum, content FROM ticket WHERE key = ?1", m_fetch);
    Prepare("DELETE FROM ticket WHERE key = ?1", m_remove);
    // A few at a time, so that no put pays for a long neglect.
    Prepare(
        "DELETE FROM ticket WHERE rowid IN (SELECT rowid FROM ticket WHERE expires <= ?1 OR stored > ?1 + 2 LIMIT 16)",
        m_clean);
}

bool TicketDatabase::Moved() const noexcept {
    int moved = 0;
    sqlite3_file_control(m_database.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

void TicketDatabase::Put(WideView key, WideView ticket, std::int64_t now, LONG seconds) {
    const std::int64_t expires = now + seconds;
    Transaction transaction(*this);
    {
        Run clean(m_database.get(), m_clean);
        clean.Bind(1, now);
        clean.Step();
    }
    {
        Run put(m_database.get(), m_put);
        put.Bind(1, key);
        put.Bind(2, now);
        put.Bind(3, expires);
        put.Bind(4, ChecksumOf(key, now, expires, ticket.data(), ticket.size() * sizeof(OLECHAR)));
        put.Bind(5, ticket);
        put.Step();
    }
    transaction.Commit();
}

Bstr TicketDatabase::Fetch(WideView key, std::int64_t now) {
    Run fetch(m_database.get(), m_fetch);
    fetch.Bind(1, key);
    if (!fetch.Step()) return {};
    const std::int64_t stored = fetch.Number(0);
    const std::int64_t expires = fetch.Number(1);
    const void* content = fetch.Bytes(3);
    const std::size_t size = fetch.Size(3);
    if (!content && (size != 0 || sqlite3_errcode(m_database.get()) == SQLITE_NOMEM)) throw std::bad_alloc();
    if (size % sizeof(OLECHAR) != 0 || ChecksumOf(key, stored, expires, content, size) != fetch.Number(2)) {
        throw DatabaseProblem(Kind::Damaged, HRESULT_FROM_WIN32(ERROR_INVALID_DATA),
                              "a ticket is not as it was stored");
    }
    // A clock that was set back must not lengthen anything's life.
    if (stored > now + kSlack || expires <= now) return {};
    Bstr ticket;
    ticket.attach(SysAllocStringLen(nullptr, static_cast<UINT>(size / sizeof(OLECHAR))));
    if (!ticket) throw std::bad_alloc();
    if (size != 0) std::memcpy(ticket.get(), content, size);
    ticket.get()[size / sizeof(OLECHAR)] = 0;
    return ticket;
}

bool TicketDatabase::Remove(WideView key) {
    Run remove(m_database.get(), m_remove);
    remove.Bind(1, key);
    remove.Step();
    return sqlite3_changes(m_database.get()) != 0;
}

void TicketDatabase::Prepare(const char* sql, Statement& statement) {
    sqlite3_stmt* prepared = nullptr;
    const int code = sqlite3_prepare_v3(m_database.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.reset(prepared);
    Check(m_database.get(), code);
}

void TicketDatabase::Execute(const char* sql) {
    Check(m_database.get(), sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr));
}

std::int64_t TicketDatabase::Number(const char* sql) {
    Statement statement;
    Prepare(sql, statement);
    Run run(m_database.get(), statement);
    return run.Step() ? run.Number(0) : 0;
}

void TicketDatabase::RequireOurs() {
    const std::int64_t application = Number("PRAGMA application_id");
    if (application == kApplicationId) return;
    // An empty database is ours to fill.
    if (application == 0 && Number("SELECT count(*) FROM sqlite_schema") == 0) return;
    if (Number("SELECT count(*) FROM sqlite_schema WHERE name = 'ticket_expires'") != 0) {
        Fail(SQLITE_CORRUPT, "the application id is wrong");
    }
    throw DatabaseProblem(Kind::Other, E_FAIL, "the file is another program's database");
}

void TicketDatabase::Create() {
    Transaction transaction(*this);
    Execute(kSchema);
    transaction.Commit();
}

}  // namespace wncom::components

#include "tools/wndevice/JobStore.h"

#include <stdexcept>
#include <system_error>

#include "tools/wndevice/RandomId.h"

namespace wndevice {
namespace {

namespace fs = std::filesystem;

// Every failure of a stream, from its opening on, still shows when it is closed.
void Close(std::ofstream& file, const fs::path& path) {
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace

JobStore::JobStore(const fs::path& folder)
    : m_jobs(fs::absolute(folder) / "jobs"), m_incoming(fs::absolute(folder) / "incoming") {
    fs::create_directories(m_jobs);
    fs::remove_all(m_incoming);
    fs::create_directories(m_incoming);
}

std::string JobStore::Add(const std::string& ticket) {
    const std::string id = NewId();
    const fs::path incoming = m_incoming / id;
    fs::create_directory(incoming);
    try {
        const fs::path path = incoming / "ticket.xml";
        std::ofstream file(path, std::ios::binary);
        file << ticket;
        Close(file, path);
        fs::rename(incoming, m_jobs / id);
    } catch (...) {
        std::error_code ignored;
        fs::remove_all(incoming, ignored);
        throw;
    }
    return id;
}

bool JobStore::Has(const std::string& jobId) const { return IsId(jobId) && fs::exists(m_jobs / jobId); }

std::optional<std::uintmax_t> JobStore::DataBytes(const std::string& jobId) const {
    if (!IsId(jobId)) return {};
    std::error_code absent;
    const std::uintmax_t bytes = fs::file_size(m_jobs / jobId / "data.bin", absent);
    return absent ? std::nullopt : std::optional(bytes);
}

JobStore::Counts JobStore::Count() const {
    Counts counts;
    for (const auto& job : fs::directory_iterator(m_jobs)) {
        ++counts.accepted;
        if (fs::exists(job.path() / "data.bin")) ++counts.complete;
    }
    return counts;
}

JobStore::Delivery::Delivery(const JobStore& store, const std::string& jobId)
    : m_incoming(store.m_incoming / NewId()),
      m_data(store.m_jobs / jobId / "data.bin"),
      m_file(m_incoming, std::ios::binary) {}

JobStore::Delivery::~Delivery() {
    m_file.close();
    std::error_code ignored;
    fs::remove(m_incoming, ignored);
}

void JobStore::Delivery::Write(const char* bytes, std::size_t count) {
    if (!m_file.write(bytes, static_cast<std::streamsize>(count))) {
        throw std::runtime_error("cannot write " + m_incoming.string());
    }
}

bool JobStore::Delivery::Finish() {
    Close(m_file, m_incoming);
    // A link, not a rename: of two deliveries at the same time only one can make the name.
    std::error_code failure;
    fs::create_hard_link(m_incoming, m_data, failure);
    if (failure == std::errc::file_exists) return false;
    if (failure) throw fs::filesystem_error("cannot keep the data", m_data, failure);
    return true;
}

}  // namespace wndevice

// The jobs on disk, the only place where they are kept.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace wndevice {

// A folder with jobs/<id>/ticket.xml and jobs/<id>/data.bin; incoming/ holds what is not whole yet and is emptied at
// the start, so a store belongs to one service at a time. What stands under jobs/ is whole. Any thread may call.
// Failures of the disk throw std::runtime_error or std::filesystem::filesystem_error.
class JobStore {
public:
    explicit JobStore(const std::filesystem::path& folder);

    // Stores a ticket as a new job and gives its id.
    std::string Add(const std::string& ticket);
    // Both take any text; one that is no id names no job.
    bool Has(const std::string& jobId) const;
    std::optional<std::uintmax_t> DataBytes(const std::string& jobId) const;

    // How many jobs there are, and how many of them have their data; reads the whole folder.
    struct Counts {
        std::size_t accepted = 0;
        std::size_t complete = 0;
    };
    Counts Count() const;

    // One delivery of a job's data. Nothing of it is seen until Finish; what was not finished leaves no trace.
    class Delivery {
    public:
        Delivery(const JobStore& store, const std::string& jobId);
        Delivery(const Delivery&) = delete;
        Delivery& operator=(const Delivery&) = delete;
        ~Delivery();

        void Write(const char* bytes, std::size_t count);
        // False when the job's data was already delivered, which then stays as it is.
        bool Finish();

    private:
        std::filesystem::path m_incoming;
        std::filesystem::path m_data;
        std::ofstream m_file;
    };

private:
    std::filesystem::path m_jobs;
    std::filesystem::path m_incoming;
};

}  // namespace wndevice

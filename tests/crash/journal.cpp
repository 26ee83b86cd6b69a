#include "journal.h"

#include <cstdlib>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace mqrig::crash {

Journal::Journal() : fd_(memfd_create("journal", MFD_CLOEXEC))
{
    if (fd_ < 0) abort();
}

Journal::~Journal()
{
    if (fd_ >= 0) close(fd_);
}

Journal::Journal(Journal &&other) noexcept : fd_(std::exchange(other.fd_, -1)), read_(other.read_) {}

Journal &Journal::operator=(Journal &&other) noexcept
{
    std::swap(fd_, other.fd_);
    std::swap(read_, other.read_);
    return *this;
}

void Journal::write(const Record &record) const
{
    if (::write(fd_, &record, sizeof record) != sizeof record) abort();
}

std::vector<Record> Journal::news()
{
    std::vector<Record> records;
    Record record;
    while (pread(fd_, &record, sizeof record, static_cast<off_t>(read_)) == sizeof record) {
        records.push_back(record);
        read_ += sizeof record;
    }
    return records;
}

} // namespace mqrig::crash

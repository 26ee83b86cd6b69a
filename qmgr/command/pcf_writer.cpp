#include "qmgr/command/pcf_writer.h"

#include <algorithm>

namespace mqrig::qmgr::command {
namespace {

constexpr std::size_t roundedUp(std::size_t length)
{
    return (length + 3) / 4 * 4;
}

void append(std::string &bytes, std::uint64_t value, std::size_t width, bool bigEndian)
{
    for (std::size_t i = 0; i < width; ++i) {
        const std::size_t shift = 8 * (bigEndian ? width - 1 - i : i);
        bytes += static_cast<char>((value >> shift) & 0xFF);
    }
}

std::size_t lengthOf(std::string_view text, MQLONG field)
{
    return field > 0 ? static_cast<std::size_t>(field) : text.size();
}

} // namespace

PcfWriter::PcfWriter(const MQCFH &header, MQLONG encoding)
    : header_(header), bigEndian_((encoding & MQENC_INTEGER_MASK) == MQENC_INTEGER_NORMAL)
{
}

void PcfWriter::begin(MQLONG type, MQLONG id, std::size_t length)
{
    ++(groups_.empty() ? parameters_ : groups_.back().members);
    number(type);
    number(static_cast<MQLONG>(length));
    number(id);
}

void PcfWriter::number(MQLONG value)
{
    wideNumber(static_cast<std::uint32_t>(value), sizeof value);
}

void PcfWriter::wideNumber(std::uint64_t value, std::size_t width)
{
    append(structures_, value, width, bigEndian_);
}

void PcfWriter::padded(std::string_view text, std::size_t length)
{
    structures_ += text.substr(0, length);
    structures_.append(length - std::min(length, text.size()), ' ');
}

// Zeros up to the next multiple of four bytes.
void PcfWriter::fill()
{
    structures_.resize(roundedUp(structures_.size()), '\0');
}

void PcfWriter::integer(MQLONG id, MQLONG value)
{
    begin(MQCFT_INTEGER, id, MQCFIN_STRUC_LENGTH);
    number(value);
}

void PcfWriter::integer64(MQLONG id, MQINT64 value)
{
    begin(MQCFT_INTEGER64, id, MQCFIN64_STRUC_LENGTH);
    number(0);
    wideNumber(static_cast<std::uint64_t>(value), sizeof value);
}

void PcfWriter::integers(MQLONG id, std::span<const MQLONG> values)
{
    begin(MQCFT_INTEGER_LIST, id, MQCFIL_STRUC_LENGTH_FIXED + values.size_bytes());
    number(static_cast<MQLONG>(values.size()));
    for (const MQLONG value : values)
        number(value);
}

void PcfWriter::text(MQLONG id, std::string_view text, MQLONG field)
{
    const std::size_t length = lengthOf(text, field);
    begin(MQCFT_STRING, id, MQCFST_STRUC_LENGTH_FIXED + roundedUp(length));
    number(MQCCSI_DEFAULT);
    number(static_cast<MQLONG>(length));
    padded(text, length);
    fill();
}

void PcfWriter::texts(MQLONG id, std::span<const std::string> texts, MQLONG field)
{
    const auto length = static_cast<std::size_t>(field);
    begin(MQCFT_STRING_LIST, id, MQCFSL_STRUC_LENGTH_FIXED + roundedUp(texts.size() * length));
    number(MQCCSI_DEFAULT);
    number(static_cast<MQLONG>(texts.size()));
    number(field);
    for (const std::string &text : texts)
        padded(text, length);
    fill();
}

void PcfWriter::bytes(MQLONG id, std::span<const MQBYTE> bytes)
{
    begin(MQCFT_BYTE_STRING, id, MQCFBS_STRUC_LENGTH_FIXED + roundedUp(bytes.size()));
    number(static_cast<MQLONG>(bytes.size()));
    structures_.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    fill();
}

void PcfWriter::integerFilter(MQLONG id, MQLONG operation, MQLONG value)
{
    begin(MQCFT_INTEGER_FILTER, id, MQCFIF_STRUC_LENGTH);
    number(operation);
    number(value);
}

void PcfWriter::textFilter(MQLONG id, MQLONG operation, std::string_view value)
{
    begin(MQCFT_STRING_FILTER, id, MQCFSF_STRUC_LENGTH_FIXED + roundedUp(value.size()));
    number(operation);
    number(MQCCSI_DEFAULT);
    number(static_cast<MQLONG>(value.size()));
    structures_ += value;
    fill();
}

void PcfWriter::beginGroup(MQLONG id)
{
    begin(MQCFT_GROUP, id, MQCFGR_STRUC_LENGTH);
    groups_.push_back({structures_.size(), 0});
    number(0);
}

void PcfWriter::endGroup()
{
    const Group group = groups_.back();
    groups_.pop_back();
    std::string count;
    append(count, static_cast<std::uint32_t>(group.members), sizeof group.members, bigEndian_);
    structures_.replace(group.countAt, count.size(), count);
}

std::string PcfWriter::message() const
{
    const MQLONG fields[] = {header_.Type,     MQCFH_STRUC_LENGTH,   header_.Version,
                             header_.Command,  header_.MsgSeqNumber, header_.Control,
                             header_.CompCode, header_.Reason,       parameters_};
    std::string message;
    message.reserve(sizeof fields + structures_.size());
    for (const MQLONG field : fields)
        append(message, static_cast<std::uint32_t>(field), sizeof field, bigEndian_);
    return message + structures_;
}

} // namespace mqrig::qmgr::command

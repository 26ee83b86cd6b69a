// Text from one character set into another.
//
// Nothing is ever replaced by a substitute: text with a character that the target has not, or with bytes that are no
// text of the source, is not converted, and its owner keeps it as it was. One character is changed on purpose: the
// EBCDIC new line becomes a line feed where the target is not EBCDIC, as MQ does it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/convert/character_set.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::convert {

// How a piece of data is written. The byte order of Unicode with two bytes is that of the encoding's integers.
struct Representation {
    MQLONG encoding = MQENC_NATIVE;
    MQLONG ccsid = MQCCSI_UNDEFINED;

    bool operator==(const Representation &) const = default;
    // Integers with their low byte first.
    bool reversed() const { return (encoding & MQENC_INTEGER_MASK) == MQENC_INTEGER_REVERSED; }
};

enum class TextEnd {
    Whole,
    NoRoom,  // the next character does not fit
    Cut,     // the source ends within a character
    Invalid, // the next bytes are no character of the source, or one that the target has not
};

// What was read and written ends with a whole character.
struct TextResult {
    TextEnd end = TextEnd::Whole;
    std::size_t read = 0;
    std::size_t written = 0;
};

class TextConverter {
public:
    ~TextConverter();
    TextConverter(const TextConverter &) = delete;
    TextConverter &operator=(const TextConverter &) = delete;

    // The converter between two representations, made at its first use and kept by the thread; valid until the next
    // call. Null with MQRC_SOURCE_CCSID_ERROR or MQRC_TARGET_CCSID_ERROR.
    struct Found {
        TextConverter *converter = nullptr;
        MQLONG reason = MQRC_NONE;
    };
    static Found between(const Representation &source, const Representation &target);

    // `to` may be the place of `from` where both sets are of single bytes.
    TextResult convert(std::span<const std::byte> from, std::span<std::byte> to);

    // Whether every byte is a character of both sets. Sources of single bytes only.
    bool knowsAll(std::span<const std::byte> from) const;

    const CharacterSet &source() const { return *source_; }
    const CharacterSet &target() const { return *target_; }
    // A blank in both sets.
    std::span<const std::byte> sourceBlank() const { return {sourceBlank_.data(), source_->unit()}; }
    std::span<const std::byte> targetBlank() const { return {targetBlank_.data(), target_->unit()}; }

private:
    struct Character {
        std::array<std::byte, 4> bytes;
        std::uint8_t size; // 0: no character, or one that the target has not
    };
    using Characters = std::array<Character, 256>;

    TextConverter() = default;
    // Whether iconv has both sets.
    bool open(const CharacterSet &source, const char *sourceName, const CharacterSet &target, const char *targetName);
    void fillTable();
    TextResult byTable(std::span<const std::byte> from, std::span<std::byte> to) const;
    TextResult byLibrary(std::span<const std::byte> from, std::span<std::byte> to);

    const CharacterSet *source_ = nullptr;
    const CharacterSet *target_ = nullptr;
    const char *sourceName_ = nullptr; // a name of the table of sets: compared by its place
    const char *targetName_ = nullptr;
    void *library_ = nullptr;           // iconv_t
    std::unique_ptr<Characters> table_; // for sources of single bytes
    std::array<std::byte, 2> sourceBlank_{};
    std::array<std::byte, 2> targetBlank_{};
};

// Whole texts. MQRC_SOURCE_CCSID_ERROR, MQRC_TARGET_CCSID_ERROR, MQRC_NOT_CONVERTED: failed, `to` is as it was.
Outcome text(std::string_view from, const Representation &source, const Representation &target, std::string &to);

// How many bytes a text of `size` bytes has at most after its conversion.
constexpr std::size_t mostAfterConversion(std::size_t size)
{
    return size * 4 + 16;
}

} // namespace mqrig::qmgr::convert

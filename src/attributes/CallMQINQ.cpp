// One MQINQ for all attributes of -inq, and one line that shows them as the command language writes them.
#include "attributes.h"

#include "attributes/attribute_object.h"
#include "common.h"
#include "mqicalls.h"
#include "tables.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::int64_t LeastCharacters = 4096;
constexpr MQLONG LongestAttribute = MQ_PROCESS_APPL_ID_LENGTH;

const AttributeOutput *output_row(MQLONG selector)
{
    const AttributeOutput *row = prm_to_msg;
    while (row->keyword != nullptr && row->selector != selector)
        ++row;
    return row->keyword != nullptr ? row : nullptr;
}

const char *keyword_of(const NamedInteger *values, MQLONG value)
{
    while (values->name != nullptr && values->value != value)
        ++values;
    return values->name;
}

/// "KEYWORD(value)", or the value alone.
template <class ShowValue>
void show_attribute(const AttributeOutput &row, ShowValue showValue)
{
    const bool bare = *row.keyword == '\0';
    if (!bare) std::printf("%s(", row.keyword);
    showValue();
    if (!bare) std::putchar(')');
}

/// An integer, or its keyword; nothing for an attribute or a value that the tables lack.
void show_integer(MQLONG selector, MQLONG value)
{
    const AttributeOutput *const row = output_row(selector);
    if (row == nullptr) return;
    if (row->values == nullptr) {
        show_attribute(*row, [value] { std::printf("%d", value); });
    } else if (const char *const keyword = keyword_of(row->values, value)) {
        show_attribute(*row, [keyword] { std::fputs(keyword, stdout); });
    }
}

/// A fixed-width attribute without the blanks around it.
class Trimmed {
public:
    Trimmed(const char *field, MQLONG length)
    {
        strncpy2(text_, field, static_cast<std::size_t>(std::min(length, LongestAttribute)));
        trim(text_);
    }
    const char *text() const { return text_; }

private:
    char text_[LongestAttribute + 1] = {};
};

void show_text(MQLONG selector, const char *field, MQLONG length)
{
    const AttributeOutput *const row = output_row(selector);
    if (row == nullptr) return;
    const Trimmed value(field, length);
    show_attribute(*row, [&value] { std::fputs(value.text(), stdout); });
}

/// 'name1','name2',...
void show_names(const char *fields, std::int64_t length)
{
    const AttributeOutput *const row = output_row(MQCA_NAMES);
    if (row == nullptr) return;
    show_attribute(*row, [=] {
        for (std::int64_t at = 0; at < length; at += MQ_OBJECT_NAME_LENGTH) {
            const Trimmed name(fields + at, MQ_OBJECT_NAME_LENGTH);
            std::printf("%s'%s'", at == 0 ? "" : ",", name.text());
        }
    });
}

enum class Kind { Integer, Text, Names };

/// An attribute asked for, in the order of the list.
struct Slot {
    MQLONG selector;
    Kind kind;
    std::int64_t length; ///< of its characters
};

class Inquiry {
public:
    Inquiry(RunParams *params, MQHCONN hconn, MQHOBJ hobj) : params_(params), hconn_(hconn), hobj_(hobj) {}

    bool allocate()
    {
        const auto forEachItem = [this](std::size_t size) {
            return element_for_each_item(params_, params_->InqList, ",", size, {"CallMQINQ"});
        };
        return (list_ = checked_copy(params_, params_->InqList, {"CallMQINQ"})) != nullptr &&
               (slots_ = forEachItem(sizeof(Slot))) != nullptr &&
               (selectors_ = forEachItem(sizeof(MQLONG))) != nullptr &&
               (integers_ = forEachItem(sizeof(MQLONG))) != nullptr;
    }

    /// Reads the list. Names that no table has are passed over. 1 when the names of a namelist could not be counted;
    /// then the rest of the list is not read.
    Status read_list()
    {
        char *position = nullptr;
        for (const char *item = strtok_r(list_.get(), ",", &position); item != nullptr;
             item = strtok_r(nullptr, ",", &position)) {
            if (add(item) != StatusOk) return StatusLocalFailure;
        }
        return StatusOk;
    }

    Status inquire()
    {
        characters_ = checked_malloc_counted(params_, std::max(characterLength_, LeastCharacters), {"CallMQINQ"});
        if (characters_ == nullptr) return StatusLocalFailure;
        return MQSeriesInquiry(hconn_, hobj_, params_, count_, longs(selectors_), integerCount_, longs(integers_),
                               static_cast<MQLONG>(characterLength_), characters_.get());
    }

    void show() const
    {
        const MQLONG *integer = longs(integers_);
        const char *characters = characters_.get();
        for (MQLONG i = 0; i < count_; ++i) {
            if (i > 0) std::putchar(' ');
            const Slot &slot = slots()[i];
            switch (slot.kind) {
            case Kind::Integer:
                show_integer(slot.selector, *integer++);
                break;
            case Kind::Text:
                show_text(slot.selector, characters, static_cast<MQLONG>(slot.length));
                break;
            case Kind::Names:
                show_names(characters, slot.length);
                break;
            }
            characters += slot.length;
        }
        std::putchar('\n');
    }

private:
    Status add(const char *item)
    {
        if (std::strncmp(item, "MQIA_", 5) == 0) {
            if (const NamedInteger *known = findByName(MQIA_TBL, item)) append({known->value, Kind::Integer, 0});
            return StatusOk;
        }
        const AttributeSelector *const known = findByName(MQCA_TBL, item);
        if (known == nullptr) return StatusOk;
        if (known->selector != MQCA_NAMES) {
            append({known->selector, Kind::Text, known->length});
            return StatusOk;
        }
        // How long the names of a namelist are is told by a count that has to be asked for first.
        MQLONG selector = MQIA_NAME_COUNT;
        MQLONG names = 0;
        if (MQSeriesInquiry(hconn_, hobj_, params_, 1, &selector, 1, &names, 0, nullptr) != StatusOk) {
            return StatusLocalFailure;
        }
        append({known->selector, Kind::Names, std::int64_t{std::max(names, 0)} * known->length});
        return StatusOk;
    }

    void append(const Slot &slot)
    {
        slots()[count_] = slot;
        longs(selectors_)[count_] = slot.selector;
        ++count_;
        if (slot.kind == Kind::Integer) ++integerCount_;
        characterLength_ += slot.length;
    }

    Slot *slots() const { return reinterpret_cast<Slot *>(slots_.get()); }
    static MQLONG *longs(const Buffer<> &array) { return reinterpret_cast<MQLONG *>(array.get()); }

    RunParams *params_;
    MQHCONN hconn_;
    MQHOBJ hobj_;
    Buffer<> list_;
    Buffer<> slots_;
    Buffer<> selectors_;
    Buffer<> integers_;
    Buffer<> characters_;
    MQLONG count_ = 0;
    MQLONG integerCount_ = 0;
    std::int64_t characterLength_ = 0;
};

Status inquire_and_show(RunParams *params, MQHCONN hconn, MQHOBJ hobj)
{
    Inquiry inquiry(params, hconn, hobj);
    if (!inquiry.allocate()) return StatusLocalFailure;
    Status status = inquiry.read_list();
    if (inquiry.inquire() == StatusOk) {
        LockedSection locked(params);
        if (locked.status() != StatusOk) return StatusLocalFailure;
        begin_attribute_line(params);
        inquiry.show();
        if (locked.release() != StatusOk) return StatusLocalFailure;
    } else {
        status = StatusLocalFailure;
    }
    if (params->GetRepeatedly != 0 || params->MsgCount > 1) {
        flush_output();
        sleep_millisecond(params, params->IntervalMs);
    }
    return status;
}

} // namespace

Status CallMQINQ(RunParams *params, MQHCONN hconn)
{
    AttributeObject object(params, hconn);
    if (object.open(MQOO_INQUIRE) != StatusOk) return StatusLocalFailure;
    if (params->MsgCount == 0) params->MsgCount = 1;
    return object.close(inquire_and_show(params, hconn, object.hobj()));
}

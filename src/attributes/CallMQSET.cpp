// One MQSET for all pairs of -set. What is wrong with a selector or a value is the queue manager's to say.
#include "attributes.h"

#include "attributes/attribute_object.h"
#include "common.h"
#include "mqicalls.h"
#include "tables.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char Separators[] = ":,";

/// Prefixes of the values that have names, and their names.
struct ValueTable {
    const char *prefix;
    const NamedInteger *names;
};

constexpr ValueTable VALUES[] = {
    {"MQQA_", MQQA_TBL},
    {"MQDL_", MQDL_TBL},
    {"MQTC_", MQTC_TBL},
    {"MQTT_", MQTT_TBL},
};

/// The value by name or as a decimal number; 0 for a name that its table lacks.
MQLONG integer_value(const char *text)
{
    for (const ValueTable &table : VALUES) {
        if (std::strncmp(text, table.prefix, std::strlen(table.prefix)) != 0) continue;
        const NamedInteger *const known = findByName(table.names, text);
        return known != nullptr ? known->value : 0;
    }
    return lenientNumber(text);
}

class Request {
public:
    explicit Request(RunParams *params) : params_(params) { std::memset(characters_, ' ', sizeof characters_); }

    /// Selector, value, selector, value...; false after the report that there is no memory.
    bool read_list()
    {
        const Buffer<> list = checked_copy(params_, params_->SetList, {"CallMQSET"});
        if (list == nullptr) return false;
        const auto forEachItem = [this] {
            return element_for_each_item(params_, params_->SetList, Separators, sizeof(MQLONG), {"CallMQSET"});
        };
        if ((selectors_ = forEachItem()) == nullptr || (integers_ = forEachItem()) == nullptr) return false;

        char *position = nullptr;
        const char *token = strtok_r(list.get(), Separators, &position);
        while (token != nullptr) {
            const MQLONG selector = add_selector(token);
            token = strtok_r(nullptr, Separators, &position);
            if (token == nullptr) break;
            add_value(selector, token);
            token = strtok_r(nullptr, Separators, &position);
        }
        return true;
    }

    Status set(MQHCONN hconn, MQHOBJ hobj)
    {
        return MQSeriesSet(hconn, hobj, params_, selectorCount_, longs(selectors_), integerCount_, longs(integers_),
                           characterLength_, characters_);
    }

private:
    /// An unknown name takes a place all the same, with a selector that no object has.
    MQLONG add_selector(const char *name)
    {
        MQLONG selector = 0;
        if (std::strncmp(name, "MQIA_", 5) == 0) {
            if (const NamedInteger *known = findByName(MQIA_TBL, name)) selector = known->value;
        } else if (const AttributeSelector *known = findByName(MQCA_TBL, name)) {
            selector = known->selector;
            characterLength_ = std::min(known->length, static_cast<MQLONG>(sizeof characters_));
        }
        longs(selectors_)[selectorCount_++] = selector;
        return selector;
    }

    /// Trigger data is the one character attribute that can be set; its value is cut at its length, and padded with
    /// blanks.
    void add_value(MQLONG selector, const char *text)
    {
        if (selector != MQCA_TRIGGER_DATA) {
            longs(integers_)[integerCount_++] = integer_value(text);
            return;
        }
        std::memset(characters_, ' ', sizeof characters_);
        std::memcpy(characters_, text, strnlen(text, MQ_TRIGGER_DATA_LENGTH));
    }

    static MQLONG *longs(const Buffer<> &array) { return reinterpret_cast<MQLONG *>(array.get()); }

    RunParams *params_;
    Buffer<> selectors_;
    Buffer<> integers_;
    MQLONG selectorCount_ = 0;
    MQLONG integerCount_ = 0;
    MQLONG characterLength_ = 0;
    MQCHAR characters_[MQ_PROCESS_APPL_ID_LENGTH]; ///< the longest attribute of the table
};

/// The request as it was given, whether it was granted or not.
Status echo_request(RunParams *params)
{
    LockedSection locked(params);
    if (locked.status() != StatusOk) return StatusLocalFailure;
    begin_attribute_line(params);
    std::printf("MQSET %s\n", params->SetList);
    return locked.release();
}

Status set_and_echo(RunParams *params, MQHCONN hconn, MQHOBJ hobj)
{
    Request request(params);
    if (!request.read_list()) return StatusLocalFailure;
    const Status set = request.set(hconn, hobj);
    const Status echoed = echo_request(params);
    return set == StatusOk && echoed == StatusOk ? StatusOk : StatusLocalFailure;
}

} // namespace

Status CallMQSET(RunParams *params, MQHCONN hconn)
{
    AttributeObject object(params, hconn);
    if (object.open(MQOO_SET) != StatusOk) return StatusLocalFailure;
    return object.close(set_and_echo(params, hconn, object.hobj()));
}

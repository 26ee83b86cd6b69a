#include "qmgr/command/subscription_attributes.h"

#include <cstddef>
#include <ctime>
#include <string>

#include "cmqcfc.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Access;
using objects::Attribute;
using objects::AttributeValue;
using objects::ValueKind;
using objects::Word;

constexpr objects::ObjectKinds ofSubscription = objects::kinds(objects::ObjectKind::Topic);
constexpr MQLONG most = 999999999;
constexpr MQLONG idDigits = 48;
constexpr MQLONG tokenDigits = 64;

constexpr Attribute text(std::string_view keyword, MQLONG selector, MQLONG length, Access access = Access::Alterable)
{
    return {.keyword = keyword,
            .selector = selector,
            .kinds = ofSubscription,
            .value = ValueKind::Text,
            .access = access,
            .words = {},
            .textLength = length,
            .defaultText = {}};
}

constexpr Attribute name(std::string_view keyword, MQLONG selector)
{
    Attribute row = text(keyword, selector, MQ_OBJECT_NAME_LENGTH);
    row.value = ValueKind::Name;
    return row;
}

constexpr Attribute number(std::string_view keyword, MQLONG selector, MQLONG low, MQLONG high,
                           std::span<const Word> words = {})
{
    return {.keyword = keyword,
            .selector = selector,
            .kinds = ofSubscription,
            .value = ValueKind::Number,
            .low = low,
            .high = high,
            .words = words,
            .defaultText = {}};
}

constexpr Attribute words(std::string_view keyword, MQLONG selector, std::span<const Word> choices,
                          Access access = Access::Alterable)
{
    return {.keyword = keyword,
            .selector = selector,
            .kinds = ofSubscription,
            .value = ValueKind::Keyword,
            .access = access,
            .words = choices,
            .defaultText = {}};
}

constexpr Word destinationClasses[] = {{"MANAGED", MQDC_MANAGED}, {"PROVIDED", MQDC_PROVIDED}};
constexpr Word durability[] = {{"YES", MQSUB_DURABLE_YES}, {"NO", MQSUB_DURABLE_NO}};
constexpr Word unlimited[] = {{"UNLIMITED", MQEI_UNLIMITED}};
constexpr Word propertyForms[] = {{"NONE", MQPSPROP_NONE}, {"MSGPROP", MQPSPROP_MSGPROP}};
constexpr Word priorities[] = {{"ASPUB", MQPRI_PRIORITY_AS_PUBLISHED}, {"ASQDEF", MQPRI_PRIORITY_AS_Q_DEF}};
constexpr Word requests[] = {{"YES", MQRU_PUBLISH_ON_REQUEST}, {"NO", MQRU_PUBLISH_ALL}};
constexpr Word scopes[] = {{"ALL", MQTSCOPE_ALL}, {"QMGR", MQTSCOPE_QMGR}};
constexpr Word types[] = {{"API", MQSUBTYPE_API}, {"ADMIN", MQSUBTYPE_ADMIN}};
constexpr Word users[] = {{"ANY", MQVU_ANY_USER}, {"FIXED", MQVU_FIXED_USER}};
constexpr Word schemes[] = {{"TOPIC", MQWS_TOPIC}, {"CHAR", MQWS_CHAR}};

constexpr Attribute rows[] = {
    text("CRDATE", MQCA_CREATION_DATE, MQ_CREATION_DATE_LENGTH, Access::Dynamic),
    text("CRTIME", MQCA_CREATION_TIME, MQ_CREATION_TIME_LENGTH, Access::Dynamic),
    name("DEST", MQCACF_DESTINATION),
    words("DESTCLAS", MQIACF_DESTINATION_CLASS, destinationClasses),
    text("DESTCORL", MQBACF_DESTINATION_CORREL_ID, idDigits),
    name("DESTQMGR", MQCACF_DESTINATION_Q_MGR),
    words("DURABLE", MQIACF_DURABLE_SUBSCRIPTION, durability, Access::Dynamic),
    number("EXPIRY", MQIACF_EXPIRY, 1, most, unlimited),
    words("PSPROP", MQIACF_PUBSUB_PROPERTIES, propertyForms),
    text("PUBACCT", MQBACF_ACCOUNTING_TOKEN, tokenDigits, Access::Dynamic),
    text("PUBAPPID", MQCACF_APPL_IDENTITY_DATA, MQ_APPL_IDENTITY_DATA_LENGTH),
    number("PUBPRTY", MQIACF_PUB_PRIORITY, 0, 9, priorities),
    words("REQONLY", MQIACF_REQUEST_ONLY, requests),
    text("SELECTOR", MQCACF_SUB_SELECTOR, MQ_SELECTOR_LENGTH),
    text("SUB", MQCACF_SUB_NAME, MQ_SUB_NAME_LENGTH, Access::Identity),
    text("SUBID", MQBACF_SUB_ID, idDigits, Access::Dynamic),
    number("SUBLEVEL", MQIACF_SUB_LEVEL, 0, 9),
    words("SUBSCOPE", MQIACF_SUBSCRIPTION_SCOPE, scopes),
    words("SUBTYPE", MQIACF_SUB_TYPE, types, Access::Dynamic),
    text("SUBUSER", MQCACF_SUB_USER_ID, MQ_USER_ID_LENGTH, Access::Dynamic),
    name("TOPICOBJ", MQCA_TOPIC_NAME),
    text("TOPICSTR", MQCA_TOPIC_STRING, MQ_TOPIC_STR_LENGTH),
    text("USERDATA", MQCACF_SUB_USER_DATA, MQ_USER_DATA_LENGTH),
    words("VARUSER", MQIACF_VARIABLE_USER_ID, users),
    words("WSCHEMA", MQIACF_WILDCARD_SCHEMA, schemes),
};

template <class Bytes>
std::string hexOf(const Bytes &bytes)
{
    std::string digits;
    for (const MQBYTE byte : bytes) {
        digits += "0123456789ABCDEF"[byte >> 4];
        digits += "0123456789ABCDEF"[byte & 0xF];
    }
    return digits;
}

bool readHex(std::string_view digits, objects::Identifier24 &bytes)
{
    constexpr std::string_view hex = "0123456789ABCDEF";
    if (digits.size() > static_cast<std::size_t>(idDigits) || digits.size() % 2 != 0) return false;
    bytes = {};
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const char upper = digits[i] >= 'a' && digits[i] <= 'f' ? static_cast<char>(digits[i] - 'a' + 'A') : digits[i];
        const std::size_t value = hex.find(upper);
        if (value == std::string_view::npos) return false;
        bytes[i / 2] = static_cast<MQBYTE>(std::size_t{bytes[i / 2]} << 4 | value);
    }
    return true;
}

// Local time, as objects have it.
std::string timeText(std::int64_t microseconds, const char *format)
{
    const auto seconds = static_cast<std::time_t>(microseconds / 1000000);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    char text[16];
    return {text, std::strftime(text, sizeof text, format, &parts)};
}

} // namespace

std::span<const Attribute> subscriptionAttributes()
{
    return rows;
}

AttributeValue valueOf(const objects::Subscription &subscription, const Attribute &attribute)
{
    switch (attribute.selector) {
    case MQCA_CREATION_DATE:
        return {0, timeText(subscription.created, "%Y-%m-%d")};
    case MQCA_CREATION_TIME:
        return {0, timeText(subscription.created, "%H.%M.%S")};
    case MQCACF_DESTINATION:
        return {0, subscription.queue};
    case MQIACF_DESTINATION_CLASS:
        return {subscription.managed ? MQDC_MANAGED : MQDC_PROVIDED, {}};
    case MQBACF_DESTINATION_CORREL_ID:
        return {0, hexOf(subscription.correlId)};
    case MQCACF_DESTINATION_Q_MGR:
        return {0, subscription.queueManager};
    case MQIACF_DURABLE_SUBSCRIPTION:
        return {subscription.durable ? MQSUB_DURABLE_YES : MQSUB_DURABLE_NO, {}};
    case MQIACF_EXPIRY:
        return {subscription.expiry, {}};
    case MQIACF_PUBSUB_PROPERTIES:
        return {subscription.properties, {}};
    case MQBACF_ACCOUNTING_TOKEN:
        return {0, hexOf(subscription.accountingToken)};
    case MQCACF_APPL_IDENTITY_DATA:
        return {0, std::string(objects::fieldText(subscription.applIdentityData))};
    case MQIACF_PUB_PRIORITY:
        return {subscription.priority, {}};
    case MQIACF_REQUEST_ONLY:
        return {subscription.onRequest ? MQRU_PUBLISH_ON_REQUEST : MQRU_PUBLISH_ALL, {}};
    case MQCACF_SUB_SELECTOR:
        return {0, subscription.selector};
    case MQCACF_SUB_NAME:
        return {0, subscription.name};
    case MQBACF_SUB_ID:
        return {0, hexOf(subscription.id)};
    case MQIACF_SUB_LEVEL:
        return {subscription.level, {}};
    case MQIACF_SUBSCRIPTION_SCOPE:
        return {subscription.scopeQueueManager ? MQTSCOPE_QMGR : MQTSCOPE_ALL, {}};
    case MQIACF_SUB_TYPE:
        return {subscription.type, {}};
    case MQCACF_SUB_USER_ID:
        return {0, std::string(objects::fieldText(subscription.user))};
    case MQCA_TOPIC_NAME:
        return {0, subscription.topicObject};
    case MQCA_TOPIC_STRING:
        return {0, subscription.topic};
    case MQCACF_SUB_USER_DATA:
        return {0, subscription.userData};
    case MQIACF_VARIABLE_USER_ID:
        return {subscription.anyUser ? MQVU_ANY_USER : MQVU_FIXED_USER, {}};
    case MQIACF_WILDCARD_SCHEMA:
        return {subscription.scheme == objects::WildcardScheme::Characters ? MQWS_CHAR : MQWS_TOPIC, {}};
    default:
        return {};
    }
}

bool setValue(objects::Subscription &subscription, const Attribute &attribute, const AttributeValue &value)
{
    switch (attribute.selector) {
    case MQCACF_DESTINATION:
        subscription.queue = value.text;
        break;
    case MQIACF_DESTINATION_CLASS:
        subscription.managed = value.number == MQDC_MANAGED;
        break;
    case MQBACF_DESTINATION_CORREL_ID:
        if (!readHex(value.text, subscription.correlId)) return false;
        subscription.keepsCorrelId = subscription.correlId == objects::Identifier24{};
        break;
    case MQCACF_DESTINATION_Q_MGR:
        subscription.queueManager = value.text;
        break;
    case MQIACF_EXPIRY:
        subscription.expiry = value.number;
        break;
    case MQIACF_PUBSUB_PROPERTIES:
        subscription.properties = value.number;
        break;
    case MQCACF_APPL_IDENTITY_DATA:
        objects::fillField(subscription.applIdentityData, value.text);
        break;
    case MQIACF_PUB_PRIORITY:
        subscription.priority = value.number;
        break;
    case MQIACF_REQUEST_ONLY:
        subscription.onRequest = value.number == MQRU_PUBLISH_ON_REQUEST;
        break;
    case MQCACF_SUB_SELECTOR:
        subscription.selector = value.text;
        break;
    case MQIACF_SUB_LEVEL:
        subscription.level = value.number;
        break;
    case MQIACF_SUBSCRIPTION_SCOPE:
        subscription.scopeQueueManager = value.number == MQTSCOPE_QMGR;
        break;
    case MQCA_TOPIC_NAME:
        subscription.topicObject = value.text;
        break;
    case MQCA_TOPIC_STRING:
        subscription.topic = value.text;
        break;
    case MQCACF_SUB_USER_DATA:
        subscription.userData = value.text;
        break;
    case MQIACF_VARIABLE_USER_ID:
        subscription.anyUser = value.number == MQVU_ANY_USER;
        break;
    case MQIACF_WILDCARD_SCHEMA:
        subscription.scheme =
            value.number == MQWS_CHAR ? objects::WildcardScheme::Characters : objects::WildcardScheme::Topic;
        break;
    default:
        break;
    }
    return true;
}

} // namespace mqrig::qmgr::command

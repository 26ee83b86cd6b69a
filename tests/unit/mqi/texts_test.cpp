// Text and byte constants come twice, as a string and as the list of its characters; both have the length of the field
// that they belong into.
#include "cmqcfc.h"
#include "cmqxc.h"

#include <string_view>

#include <gtest/gtest.h>

namespace {

TEST(TextConstants, HaveTheLengthOfTheirFieldInBothForms)
{
#define TEXT(constant, length)                                                                                         \
    {                                                                                                                  \
        constexpr char list[] = {constant##_ARRAY};                                                                    \
        static_assert(sizeof(constant) - 1 == (length) && sizeof list == (length), #constant);                         \
        EXPECT_EQ(std::string_view(list, sizeof list), std::string_view(constant, sizeof(constant) - 1)) << #constant; \
    }
#include "texts_cmqc.inc"
#include "texts_cmqcfc.inc"
#include "texts_cmqxc.inc"
#undef TEXT
}

// The length of the field is what the headers call it, too.
static_assert(sizeof(MQMI_NONE) - 1 == MQ_MSG_ID_LENGTH && sizeof(MQMD::MsgId) == MQ_MSG_ID_LENGTH);
static_assert(sizeof(MQCI_NONE) - 1 == MQ_CORREL_ID_LENGTH && sizeof(MQMD::CorrelId) == MQ_CORREL_ID_LENGTH);
static_assert(sizeof(MQGI_NONE) - 1 == MQ_GROUP_ID_LENGTH && sizeof(MQMD::GroupId) == MQ_GROUP_ID_LENGTH);
static_assert(sizeof(MQACT_NONE) - 1 == MQ_ACCOUNTING_TOKEN_LENGTH &&
              sizeof(MQMD::AccountingToken) == MQ_ACCOUNTING_TOKEN_LENGTH);
static_assert(sizeof(MQMTOK_NONE) - 1 == MQ_MSG_TOKEN_LENGTH && sizeof(MQGMO::MsgToken) == MQ_MSG_TOKEN_LENGTH);
static_assert(sizeof(MQCT_NONE) - 1 == MQ_CONN_TAG_LENGTH && sizeof(MQCNO::ConnTag) == MQ_CONN_TAG_LENGTH);
static_assert(sizeof(MQCONNID_NONE) - 1 == MQ_CONNECTION_ID_LENGTH &&
              sizeof(MQCNO::ConnectionId) == MQ_CONNECTION_ID_LENGTH);
static_assert(sizeof(MQSID_NONE) - 1 == MQ_SECURITY_ID_LENGTH &&
              sizeof(MQOD::AlternateSecurityId) == MQ_SECURITY_ID_LENGTH);
static_assert(sizeof(MQFMT_NONE) - 1 == MQ_FORMAT_LENGTH && sizeof(MQMD::Format) == MQ_FORMAT_LENGTH);
static_assert(sizeof(MQAN_NONE) - 1 == MQ_APPL_NAME_LENGTH && sizeof(MQCNO::ApplName) == MQ_APPL_NAME_LENGTH);

} // namespace

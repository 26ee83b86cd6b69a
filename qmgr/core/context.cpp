#include "qmgr/core/context.h"

#include <cstring>

namespace mqrig::qmgr::core {
namespace {

template <class Field>
void copyField(Field &to, const Field &from)
{
    std::memcpy(to, from, sizeof to);
}

template <std::size_t N>
void blank(char (&field)[N])
{
    std::memset(field, ' ', N);
}

} // namespace

MessageContext contextOf(const MQMD &md)
{
    MessageContext context{};
    copyField(context.identity.UserIdentifier, md.UserIdentifier);
    copyField(context.identity.AccountingToken, md.AccountingToken);
    copyField(context.identity.ApplIdentityData, md.ApplIdentityData);
    context.origin.PutApplType = md.PutApplType;
    copyField(context.origin.PutApplName, md.PutApplName);
    copyField(context.origin.PutDate, md.PutDate);
    copyField(context.origin.PutTime, md.PutTime);
    copyField(context.origin.ApplOriginData, md.ApplOriginData);
    return context;
}

void setIdentity(MQMD &md, const IdentityContext &identity)
{
    copyField(md.UserIdentifier, identity.UserIdentifier);
    copyField(md.AccountingToken, identity.AccountingToken);
    copyField(md.ApplIdentityData, identity.ApplIdentityData);
}

void setOrigin(MQMD &md, const OriginContext &origin)
{
    md.PutApplType = origin.PutApplType;
    copyField(md.PutApplName, origin.PutApplName);
    copyField(md.PutDate, origin.PutDate);
    copyField(md.PutTime, origin.PutTime);
    copyField(md.ApplOriginData, origin.ApplOriginData);
}

void setDefaultIdentity(MQMD &md, const ProcessIdentity &process)
{
    copyField(md.UserIdentifier, process.userIdentifier);
    copyField(md.AccountingToken, process.accountingToken);
    blank(md.ApplIdentityData);
}

void setDefaultOrigin(MQMD &md, const ProcessIdentity &process, PutClock &clock, std::int64_t putTime)
{
    md.PutApplType = MQAT_DEFAULT;
    copyField(md.PutApplName, process.putApplName);
    clock.write(putTime, md.PutDate, md.PutTime);
    blank(md.ApplOriginData);
}

void setNoContext(MQMD &md)
{
    blank(md.UserIdentifier);
    std::memset(md.AccountingToken, 0, sizeof md.AccountingToken);
    blank(md.ApplIdentityData);
    md.PutApplType = MQAT_NO_CONTEXT;
    blank(md.PutApplName);
    blank(md.PutDate);
    blank(md.PutTime);
    blank(md.ApplOriginData);
}

void padIdentity(MQMD &md)
{
    padField(md.UserIdentifier);
    padField(md.ApplIdentityData);
}

void padOrigin(MQMD &md)
{
    padField(md.PutApplName);
    padField(md.PutDate);
    padField(md.PutTime);
    padField(md.ApplOriginData);
}

void padField(char *field, std::size_t length)
{
    if (void *end = std::memchr(field, 0, length)) {
        const auto text = static_cast<std::size_t>(static_cast<char *>(end) - field);
        std::memset(end, ' ', length - text);
    }
}

} // namespace mqrig::qmgr::core

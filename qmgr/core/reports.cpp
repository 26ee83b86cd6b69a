#include "qmgr/core/reports.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "qmgr/core/dead_letter.h"
#include "qmgr/core/expiry.h"
#include "qmgr/core/header_chain.h"
#include "qmgr/core/put_properties.h"
#include "qmgr/core/put_steps.h"
#include "qmgr/core/system_put.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

// One kind of report: the bit that asks for it is `option`, the next two ask for data.
struct Kind {
    MQLONG option;

    MQLONG allBits() const { return option | (option << 1) | (option << 2); }
    bool wantsData(MQLONG report) const { return (report & (option << 1)) != 0; }
    bool wantsAllData(MQLONG report) const { return (report & (option << 2)) != 0; }
};
constexpr Kind arrival{MQRO_COA};
constexpr Kind delivery{MQRO_COD};
constexpr Kind expiration{MQRO_EXPIRATION};
constexpr Kind exception{MQRO_EXCEPTION};

constexpr std::size_t someData = 100;

// What the report carries of the stored message: the properties, and of the body nothing, all, or the headers and
// 100 bytes behind them.
std::span<const std::byte> reportedPart(Kind kind, const store::MessageHeader &header,
                                        std::span<const std::byte> stored)
{
    const MQLONG report = header.md.Report;
    if (kind.wantsAllData(report)) return stored;
    const std::size_t properties = std::min<std::size_t>(header.coreLength, stored.size());
    if (!kind.wantsData(report)) return stored.first(properties);
    const std::size_t headers = lengthOfHeaders(header.md, stored.subspan(properties));
    return stored.first(std::min(stored.size(), properties + headers + someData));
}

void passIdentifiers(const MQMD &original, MQMD &md)
{
    const auto pass = [](MQBYTE24 &to, const MQBYTE24 &from) { std::memcpy(to, from, sizeof to); };
    if ((original.Report & MQRO_PASS_MSG_ID) != 0) pass(md.MsgId, original.MsgId);
    pass(md.CorrelId, (original.Report & MQRO_PASS_CORREL_ID) != 0 ? original.CorrelId : original.MsgId);
    pass(md.GroupId, original.GroupId);
    md.MsgSeqNumber = original.MsgSeqNumber;
    md.Offset = original.Offset;
    md.MsgFlags = original.MsgFlags;
}

// Nothing is left to pass on of a message whose time is over: the report about that is for good.
void passDiscardAndExpiry(const store::MessageHeader &original, MQMD &md)
{
    if ((original.md.Report & MQRO_PASS_DISCARD_AND_EXPIRY) == 0) return;
    md.Report = original.md.Report & MQRO_DISCARD_MSG;
    md.Expiry = remainingExpiry(original);
}

MQMD reportDescriptor(Connection &connection, const store::MessageHeader &header, std::size_t bodyLength,
                      MQLONG feedback)
{
    const MQMD &original = header.md;
    MQMD md = queueManagerDescriptor(connection, original.Format);
    md.MsgType = MQMT_REPORT;
    md.Feedback = feedback;
    md.Encoding = original.Encoding;
    md.CodedCharSetId = original.CodedCharSetId;
    md.Priority = original.Priority;
    md.Persistence = original.Persistence;
    setIdentity(md, contextOf(original).identity);
    passIdentifiers(original, md);
    if (feedback != MQFB_EXPIRATION) passDiscardAndExpiry(header, md);
    if ((original.MsgFlags & (MQMF_SEGMENT | MQMF_LAST_SEGMENT)) != 0)
        md.OriginalLength = static_cast<MQLONG>(bodyLength);
    return md;
}

Outcome send(Connection &connection, UnitOfWork &unit, const store::MessageHeader &about, std::size_t bodyLength,
             std::span<const std::byte> part, MQLONG feedback)
{
    store::NewMessage report{};
    report.header.md = reportDescriptor(connection, about, bodyLength, feedback);
    report.header.coreFlags = about.coreFlags;
    report.body = part;
    std::vector<std::byte> copied;
    if (about.coreLength != 0) {
        // Of the properties those that may be copied into a report.
        const std::size_t properties = std::min<std::size_t>(about.coreLength, part.size());
        copied = copiedProperties(part.first(properties), MQCOPY_REPORT);
        report.header.coreLength = static_cast<std::uint32_t>(copied.size());
        copied.insert(copied.end(), part.begin() + static_cast<std::ptrdiff_t>(properties), part.end());
        report.body = copied;
    }
    const ObjectName destination{MQOT_Q, objects::fieldText(about.md.ReplyToQ),
                                 objects::fieldText(about.md.ReplyToQMgr)};
    const Outcome sent = putOrDeadLetter(connection, unit, destination, report);
    return isOfStore(sent) ? sent : success();
}

Outcome reportStored(Connection &connection, UnitOfWork &unit, const store::MessageKey &key,
                     const store::MessageHeader &header, Kind kind, MQLONG feedback)
{
    std::vector<std::byte> part;
    if (header.coreLength != 0 || kind.wantsData(header.md.Report)) {
        const Outcome read = connection.store->read([&](store::ReadTransaction &transaction) {
            const auto reported = reportedPart(kind, header, transaction.body(key));
            part.assign(reported.begin(), reported.end());
            return success();
        });
        if (read.failed()) return read;
    }
    return send(connection, unit, header, header.bodyLength - header.coreLength, part, feedback);
}

} // namespace

bool areReportOptionsValid(MQLONG report)
{
    for (const Kind kind : {arrival, delivery, expiration, exception}) {
        const MQLONG asked = report & kind.allBits();
        const bool named = asked == 0 || asked == kind.option || asked == (kind.option | (kind.option << 1)) ||
                           asked == kind.allBits();
        if (!named) return false;
    }
    return true;
}

Outcome reportArrival(Connection &connection, UnitOfWork &unit, const store::NewMessage &message)
{
    const store::MessageHeader &header = message.header;
    if (!wantsArrivalReport(header.md)) return success();
    return send(connection, unit, header, message.body.size() - header.coreLength,
                reportedPart(arrival, header, message.body), MQFB_COA);
}

Outcome reportDelivery(Connection &connection, UnitOfWork &unit, const store::MessageKey &key,
                       const store::MessageHeader &header)
{
    if (!wantsDeliveryReport(header.md)) return success();
    return reportStored(connection, unit, key, header, delivery, MQFB_COD);
}

Outcome reportExpiration(Connection &connection, UnitOfWork &unit, const store::MessageKey &key,
                         const store::MessageHeader &header)
{
    if (!wantsExpirationReport(header.md)) return success();
    return reportStored(connection, unit, key, header, expiration, MQFB_EXPIRATION);
}

} // namespace mqrig::qmgr::core

// The histories: each uses one part of the MQI, with as few calls as show it.
#include "trial.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <thread>
#include <utility>

#include "cmqcfc.h"
#include "cmqxc.h"
#include "qmgr/command/mqsc_interpreter.h"
#include "qmgr/command/pcf_writer.h"
#include "qmgr/core/reconnect.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/paths.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::faults {

namespace {

constexpr MQLONG everything = MQOO_INPUT_SHARED | MQOO_OUTPUT | MQOO_BROWSE | MQOO_INQUIRE | MQOO_SET;
constexpr MQLONG persistent = MQPER_PERSISTENT;
constexpr MQLONG quick = MQPER_NOT_PERSISTENT;

template <std::size_t N>
void setText(char (&field)[N], std::string_view value)
{
    std::memset(field, ' ', N);
    value.copy(field, N);
}

MQMD withFormat(const char *format)
{
    MQMD md = {MQMD_DEFAULT};
    md.Version = MQMD_VERSION_2;
    std::memcpy(md.Format, format, sizeof md.Format);
    return md;
}

void connecting(Trial &run)
{
    for (int round = 0; round < 2; ++round) {
        if (!run.connect()) return;
        run.close(run.open("Q1", everything));
        run.close(run.open("Q2", MQOO_INPUT_EXCLUSIVE));
        run.disconnect();
    }
}

void messages(Trial &run)
{
    if (!run.connect()) return;
    const MQHOBJ q1 = run.open("Q1", everything);
    run.put(q1, "Q1", "quick", quick);
    run.put(q1, "Q1", "safe", persistent);
    run.put(q1, "Q1", "large and safe" + std::string(60'000, '.'), persistent);
    run.put(q1, "Q1", "large and quick" + std::string(60'000, '.'), quick);
    run.browse(q1, "Q1", MQGMO_BROWSE_FIRST);
    run.browse(q1, "Q1");
    run.get(q1, "Q1");
    run.get(q1, "Q1");
    run.get(q1, "Q1");
    run.close(q1);
    run.disconnect();
}

void unitsOfWork(Trial &run)
{
    if (!run.connect()) return;
    const MQHOBJ q1 = run.open("Q1", everything);
    const MQHOBJ q2 = run.open("Q2", everything);
    run.put(q1, "Q1", "quick in a unit", quick, Unit::Yes);
    run.put(q1, "Q1", "safe in a unit", persistent, Unit::Yes);
    run.commit();
    run.put(q2, "Q2", "never", persistent, Unit::Yes);
    run.get(q1, "Q1", Unit::Yes);
    run.get(q1, "Q1", Unit::Yes);
    run.backOut();
    run.get(q1, "Q1", Unit::Yes);
    run.put(q2, "Q2", "moved", persistent, Unit::Yes);
    run.commit();
    run.put(q2, "Q2", "left to the end", quick, Unit::Yes);
    run.get(q1, "Q1", Unit::Yes);
    run.disconnect();
}

void properties(Trial &run)
{
    if (!run.connect()) return;
    const MQHOBJ q1 = run.open("Q1", everything);
    MQCMHO cmho = {MQCMHO_DEFAULT};
    MQHMSG hmsg = MQHM_UNUSABLE_HMSG;
    const bool made =
        run.call("MQCRTMH", [&](PMQLONG cc, PMQLONG rc) { MQCRTMH(run.hconn, &cmho, &hmsg, cc, rc); }).ok();
    bool set = false;
    MQCHARV name = {MQCHARV_DEFAULT};
    char colour[] = "colour";
    name.VSPtr = colour;
    name.VSLength = MQVS_NULL_TERMINATED;
    if (made) {
        MQSMPO smpo = {MQSMPO_DEFAULT};
        MQPD pd = {MQPD_DEFAULT};
        char red[] = "red";
        set = run.call("MQSETMP",
                       [&](PMQLONG cc, PMQLONG rc) {
                           MQSETMP(run.hconn, hmsg, &smpo, &name, &pd, MQTYPE_STRING, 3, red, cc, rc);
                       })
                  .ok();
        MQPMO pmo = {MQPMO_DEFAULT};
        pmo.Version = MQPMO_VERSION_3;
        pmo.OriginalMsgHandle = hmsg;
        run.put(q1, "Q1", "with properties", persistent, Unit::No, withFormat(MQFMT_STRING), pmo);
    }
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Version = MQGMO_VERSION_4;
    if (made) {
        gmo.Options = MQGMO_PROPERTIES_IN_HANDLE;
        gmo.MsgHandle = hmsg;
    }
    const std::string body = made ? run.get(q1, "Q1", Unit::No, gmo) : std::string();
    if (set && !body.empty()) {
        MQIMPO impo = {MQIMPO_DEFAULT};
        MQPD pd = {MQPD_DEFAULT};
        MQLONG type = 0;
        MQLONG length = 0;
        char value[100];
        run.call("MQINQMP", [&](PMQLONG cc, PMQLONG rc) {
            MQINQMP(run.hconn, hmsg, &impo, &name, &pd, &type, sizeof value, value, &length, cc, rc);
        });
        MQMHBO mhbo = {MQMHBO_DEFAULT};
        MQMD md = withFormat(MQFMT_NONE);
        char buffer[4000];
        char all[] = "%";
        MQCHARV every = {MQCHARV_DEFAULT};
        every.VSPtr = all;
        every.VSLength = MQVS_NULL_TERMINATED;
        run.call("MQMHBUF", [&](PMQLONG cc, PMQLONG rc) {
            MQMHBUF(run.hconn, hmsg, &mhbo, &every, &md, sizeof buffer, buffer, &length, cc, rc);
        });
        MQDMPO dmpo = {MQDMPO_DEFAULT};
        run.call("MQDLTMP", [&](PMQLONG cc, PMQLONG rc) { MQDLTMP(run.hconn, hmsg, &dmpo, &name, cc, rc); });
    }
    MQDMHO dmho = {MQDMHO_DEFAULT};
    if (made) run.call("MQDLTMH", [&](PMQLONG cc, PMQLONG rc) { MQDLTMH(run.hconn, &hmsg, &dmho, cc, rc); });
    run.disconnect();
}

void groups(Trial &run)
{
    if (!run.connect()) return;
    const MQHOBJ q1 = run.open("Q1", everything);
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Version = MQPMO_VERSION_2;
    pmo.Options = MQPMO_LOGICAL_ORDER;
    MQMD md = withFormat(MQFMT_STRING);
    md.MsgFlags = MQMF_MSG_IN_GROUP;
    const bool first = run.put(q1, "Q1", "first of the group", persistent, Unit::Yes, md, pmo).ok();
    md.MsgFlags = MQMF_LAST_MSG_IN_GROUP;
    const bool last = first && run.put(q1, "Q1", "last of the group", persistent, Unit::Yes, md, pmo).ok();
    run.commit();
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Version = MQGMO_VERSION_2;
    gmo.MatchOptions = MQMO_NONE;
    gmo.Options = MQGMO_LOGICAL_ORDER | MQGMO_ALL_MSGS_AVAILABLE;
    if (last && !run.get(q1, "Q1", Unit::Yes, gmo).empty()) run.get(q1, "Q1", Unit::Yes, gmo);
    run.commit();
    run.disconnect();
}

void conversion(Trial &run)
{
    if (!run.connect()) return;
    const MQHOBJ q1 = run.open("Q1", everything);
    MQMD md = withFormat(MQFMT_STRING);
    md.CodedCharSetId = 1208;
    const std::string body = "gr\xc3\xbcn";
    if (run.put(q1, "Q1", body, persistent, Unit::No, md).ok()) {
        MQMD got = {MQMD_DEFAULT};
        got.Version = MQMD_VERSION_2;
        got.CodedCharSetId = 500;
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Options = MQGMO_CONVERT | MQGMO_NO_SYNCPOINT;
        char buffer[100];
        MQLONG length = 0;
        const Codes codes = run.call(
            "MQGET with MQGMO_CONVERT",
            [&](PMQLONG cc, PMQLONG rc) { MQGET(run.hconn, q1, &got, &gmo, sizeof buffer, buffer, &length, cc, rc); },
            run.faultless() ? MQRC_NONE : MQRC_SOURCE_CCSID_ERROR); // no converter can be had
        if (!codes.failed()) run.taken("Q1", body);
        if (codes.Reason == MQRC_CONNECTION_BROKEN) run.perhapsTaken("Q1");
    }
    run.disconnect();
}

void distributionList(Trial &run)
{
    if (!run.connect()) return;
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_2;
    MQOR queues[2] = {{MQOR_DEFAULT}, {MQOR_DEFAULT}};
    setText(queues[0].ObjectName, "Q1");
    setText(queues[1].ObjectName, "Q2");
    MQRR opened[2] = {};
    od.RecsPresent = 2;
    od.ObjectRecPtr = queues;
    od.ResponseRecPtr = opened;
    MQHOBJ list = MQHO_UNUSABLE_HOBJ;
    const Codes codes = run.call(
        "MQOPEN of a list", [&](PMQLONG cc, PMQLONG rc) { MQOPEN(run.hconn, &od, MQOO_OUTPUT, &list, cc, rc); },
        run.faultless() ? MQRC_NONE : MQRC_MULTIPLE_REASONS);
    if (!codes.failed()) {
        MQPMO pmo = {MQPMO_DEFAULT};
        pmo.Version = MQPMO_VERSION_2;
        MQRR put[2] = {{MQCC_FAILED, 0}, {MQCC_FAILED, 0}};
        pmo.RecsPresent = 2;
        pmo.ResponseRecPtr = put;
        pmo.Options = MQPMO_NO_SYNCPOINT;
        MQMD md = withFormat(MQFMT_STRING);
        md.Persistence = persistent;
        char body[] = "to both";
        const Codes codesOfPut = run.call(
            "MQPUT to a list", [&](PMQLONG cc, PMQLONG rc) { MQPUT(run.hconn, list, &md, &pmo, 7, body, cc, rc); },
            run.faultless() ? MQRC_NONE : MQRC_MULTIPLE_REASONS);
        const bool each = codesOfPut.Reason == MQRC_MULTIPLE_REASONS;
        const bool broken = codesOfPut.Reason == MQRC_CONNECTION_BROKEN;
        const char *const names[] = {"Q1", "Q2"};
        for (int at = 0; at < 2; ++at) {
            const bool isOn = each ? put[at].CompCode != MQCC_FAILED : !codesOfPut.failed();
            const bool unknown = broken || (each && put[at].Reason == MQRC_CONNECTION_BROKEN);
            run.noted(names[at], "to both", persistent, unknown ? Fate::Maybe : isOn ? Fate::On : Fate::Off);
        }
        run.close(list);
    }
    run.disconnect();
}

void dynamicQueues(Trial &run)
{
    if (!run.connect()) return;
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "SYSTEM.DEFAULT.MODEL.QUEUE");
    setText(od.DynamicQName, "TEMP.*");
    const MQHOBJ own = run.open(od, MQOO_INPUT_SHARED | MQOO_OUTPUT);
    run.put(own, "", "on a dynamic queue", quick);
    run.get(own, "");
    run.put(own, "", "goes with its queue", quick);
    run.close(own, MQCO_DELETE_PURGE);
    // It has gone with its messages, or goes with the connection.
    run.noted("Q1", "goes with its queue", quick, Fate::Off);
    run.disconnect();
}

void commandMessages(Trial &run)
{
    if (!run.connect()) return;
    const MQHOBJ commands = run.open("SYSTEM.ADMIN.COMMAND.QUEUE", MQOO_OUTPUT);
    const MQHOBJ replies = run.open("REPLY", MQOO_INPUT_SHARED);
    MQCFH header = {MQCFH_DEFAULT};
    header.Command = MQCMD_INQUIRE_Q;
    command::PcfWriter writer(header);
    writer.text(MQCA_Q_NAME, "Q*");
    std::string request = writer.message();
    MQMD md = withFormat(MQFMT_ADMIN);
    md.MsgType = MQMT_REQUEST;
    setText(md.ReplyToQ, "REPLY");
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Options = MQPMO_NO_SYNCPOINT;
    if (commands != MQHO_UNUSABLE_HOBJ) {
        run.call("MQPUT of a command", [&](PMQLONG cc, PMQLONG rc) {
            MQPUT(run.hconn, commands, &md, &pmo, static_cast<MQLONG>(request.size()), request.data(), cc, rc);
        });
    }
    for (bool more = replies != MQHO_UNUSABLE_HOBJ; more;) {
        MQMD reply = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Options = MQGMO_NO_SYNCPOINT;
        char buffer[10'000];
        MQLONG length = 0;
        more = run.call(
                      "MQGET of a reply",
                      [&](PMQLONG cc, PMQLONG rc) {
                          MQGET(run.hconn, replies, &reply, &gmo, sizeof buffer, buffer, &length, cc, rc);
                      },
                      MQRC_NO_MSG_AVAILABLE)
                   .ok();
    }
    run.disconnect();
}

struct Consumed {
    Trial *run = nullptr;
    std::atomic<int> messages{0};
    std::atomic<bool> broken{false}; // what became of the message that was to come is not known
};

void MQENTRY consume(MQHCONN, PMQVOID, PMQVOID, PMQVOID buffer, PMQCBC context)
{
    const Outside outside;
    auto *consumed = static_cast<Consumed *>(context->CallbackArea);
    if (context->Reason == MQRC_CONNECTION_BROKEN) consumed->broken = true;
    if (context->CallType != MQCBCT_MSG_REMOVED || context->CompCode == MQCC_FAILED) return;
    consumed->run->taken("Q1", {static_cast<const char *>(buffer), static_cast<std::size_t>(context->DataLength)});
    consumed->messages.fetch_add(1);
}

void consumers(Trial &run)
{
    Consumed consumed;
    consumed.run = &run;
    if (!run.connect()) return;
    const MQHOBJ q1 = run.open("Q1", everything);
    run.put(q1, "Q1", "for the consumer", quick);
    run.put(q1, "Q1", "safe, for the consumer", persistent);
    MQCBD cbd = {MQCBD_DEFAULT};
    cbd.CallbackType = MQCBT_MESSAGE_CONSUMER;
    cbd.CallbackFunction = reinterpret_cast<MQPTR>(&consume);
    cbd.CallbackArea = &consumed;
    cbd.Options = MQCBDO_STOP_CALL;
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Options = MQGMO_NO_SYNCPOINT;
    if (q1 != MQHO_UNUSABLE_HOBJ) {
        const bool registered =
            run.call("MQCB",
                     [&](PMQLONG cc, PMQLONG rc) { MQCB(run.hconn, MQOP_REGISTER, &cbd, q1, &md, &gmo, cc, rc); })
                .ok();
        MQCTLO ctlo = {MQCTLO_DEFAULT};
        const auto control = [&](const char *name, MQLONG operation) {
            return run.call(name, [&](PMQLONG cc, PMQLONG rc) { MQCTL(run.hconn, operation, &ctlo, cc, rc); }).ok();
        };
        if (registered && control("MQCTL start", MQOP_START)) {
            // Where something fails nobody says that a message comes.
            const auto patience = std::chrono::milliseconds(run.faultless() ? 10'000 : 20);
            const auto until = std::chrono::steady_clock::now() + patience;
            while (consumed.messages < 2 && std::chrono::steady_clock::now() < until)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            if (run.faultless() && consumed.messages < 2) run.fault("the consumer was not called");
            if (!control("MQCTL stop", MQOP_STOP)) {
                // Without the fault it has to stop before what it writes to is gone.
                MQLONG cc = 0;
                MQLONG rc = 0;
                nthCallDisarm();
                MQCTL(run.hconn, MQOP_STOP, &ctlo, &cc, &rc);
            }
        }
    }
    run.disconnect();
    // Callbacks end with the connection.
    run.settle();
    if (run.sawEnd() || consumed.broken) run.perhapsTaken("Q1");
}

void reconnection(Trial &run)
{
    static constexpr std::chrono::milliseconds delays[] = {std::chrono::milliseconds(5)};
    core::reconnectTimes = {delays, std::chrono::milliseconds(run.faultless() ? 10'000 : 60)};
    if (!run.connect(MQCNO_RECONNECT)) return;
    const MQHOBJ q1 = run.open("Q1", everything);
    run.put(q1, "Q1", "before the end", persistent);
    const auto folder = store::defaultStoreFolder();
    if (store::endQueueManager(folder, "QM1", store::End::Reconnect).ok()) {
        run.lifeIsOver();
        if (!store::startQueueManager(folder, "QM1").ok()) run.fault("cannot be started without a fault");
    }
    run.put(q1, "Q1", "after the reconnection", persistent);
    run.get(q1, "Q1");
    run.disconnect();
}

// Administration throws only for want of memory; its answers are the program's to show.
template <class Work>
bool administer(Trial &run, const char *name, Work &&work)
{
    try {
        const Inside inside;
        const Outcome outcome = work();
        if (outcome.ok()) return true;
        const Outside outside;
        // What follows from a step that has failed before.
        constexpr MQLONG consequences[] = {MQRC_Q_MGR_NAME_ERROR, MQRC_Q_MGR_ACTIVE, MQRC_Q_MGR_NOT_ACTIVE,
                                           MQRC_Q_MGR_QUIESCING};
        const bool follows = !run.faultless() && std::ranges::count(consequences, outcome.Reason) > 0;
        run.call(
            name,
            [&](PMQLONG cc, PMQLONG rc) {
                *cc = outcome.CompCode;
                *rc = outcome.Reason;
            },
            follows ? outcome.Reason : MQRC_NONE);
    } catch (const std::bad_alloc &) {
        if (run.faultless()) run.fault(std::string(name) + " has no memory");
    } catch (const std::exception &error) {
        run.fault(std::string(name) + " throws: " + error.what());
    }
    return false;
}

void commands(Trial &run)
{
    std::unique_ptr<store::Attachment> attachment;
    administer(run, "attach", [&] {
        auto attached = store::attach(store::defaultStoreFolder(), "QM1");
        attachment = std::move(attached.attachment);
        return attached.outcome;
    });
    if (!attachment) return;
    for (const char *text :
         {"DEFINE QLOCAL(Q3) MAXDEPTH(100) DESCR('made by a command')", "ALTER QLOCAL(Q3) MAXDEPTH(200)",
          "DISPLAY QLOCAL(Q3) ALL", "DISPLAY QUEUE(*) WHERE(MAXDEPTH EQ 200)", "CLEAR QLOCAL(Q3)",
          "DISPLAY CONN(*) ALL", "DELETE QLOCAL(Q3)"}) {
        administer(run, text, [&] {
            bool read = false;
            command::MqscReader reader(
                [&]() -> std::optional<std::string> {
                    return std::exchange(read, true) ? std::nullopt : std::optional<std::string>(text);
                },
                [](std::string_view, bool) {});
            const auto command = reader.next();
            if (command) static_cast<void>(command::runMqsc(*attachment, *command));
            return success();
        });
    }
    {
        const Inside inside;
        attachment.reset();
    }
    // Left by a command that failed, it goes without a fault.
    nthCallDisarm();
    const auto again = store::attach(store::defaultStoreFolder(), "QM1");
    if (!again.attachment || !again.attachment->findDefinition(MQOT_Q, "Q3")) return;
    const Outcome gone = again.attachment->remove(MQOT_Q, "Q3", nullptr);
    if (gone.failed()) run.fault("the queue cannot be deleted without a fault: " + std::to_string(gone.Reason));
}

void lives(Trial &run)
{
    const auto folder = store::defaultStoreFolder();
    const std::string name = "QM2";
    administer(run, "create", [&] {
        return store::createQueueManager(folder, name, objects::systemObjects(name), store::DefaultQueueManager::No);
    });
    administer(run, "list", [&] {
        static_cast<void>(store::listQueueManagers(folder));
        return success();
    });
    administer(run, "end", [&] { return store::endQueueManager(folder, name, store::End::Quiesce); });
    administer(run, "start", [&] { return store::startQueueManager(folder, name); });
    administer(run, "end at once", [&] { return store::endQueueManager(folder, name, store::End::Immediate); });
    administer(run, "delete", [&] { return store::deleteQueueManager(folder, name); });
    // What is left of it goes without a fault.
    nthCallDisarm();
    const auto found = store::stateOf(folder, name);
    if (found.outcome.Reason == MQRC_Q_MGR_NAME_ERROR) return;
    if (found.outcome.failed()) run.fault("the state is " + std::to_string(found.outcome.Reason));
    if (found.state != store::State::Ended && store::endQueueManager(folder, name, store::End::Immediate).failed())
        run.fault("cannot be ended without a fault");
    if (const Outcome gone = store::deleteQueueManager(folder, name); gone.failed())
        run.fault("cannot be deleted without a fault: " + std::to_string(gone.Reason));
}

void attributes(Trial &run)
{
    if (!run.connect()) return;
    const MQHOBJ q1 = run.open("Q1", everything);
    MQLONG selectors[] = {MQIA_TRIGGER_DEPTH, MQCA_TRIGGER_DATA};
    MQLONG value = 7;
    char text[MQ_TRIGGER_DATA_LENGTH];
    setText(text, "data");
    if (q1 != MQHO_UNUSABLE_HOBJ) {
        run.call("MQSET", [&](PMQLONG cc, PMQLONG rc) {
            MQSET(run.hconn, q1, 2, selectors, 1, &value, sizeof text, text, cc, rc);
        });
        value = 1; // so that the next history changes something too
        run.call("MQSET", [&](PMQLONG cc, PMQLONG rc) {
            MQSET(run.hconn, q1, 2, selectors, 1, &value, sizeof text, text, cc, rc);
        });
        run.call("MQINQ", [&](PMQLONG cc, PMQLONG rc) {
            MQINQ(run.hconn, q1, 2, selectors, 1, &value, sizeof text, text, cc, rc);
        });
    }
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "Q2");
    MQMD md = withFormat(MQFMT_STRING);
    md.Persistence = quick;
    md.Report = MQRO_COA_WITH_DATA;
    setText(md.ReplyToQ, "REPLY");
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Options = MQPMO_NO_SYNCPOINT;
    char body[] = "by MQPUT1";
    const Codes codes =
        run.call("MQPUT1", [&](PMQLONG cc, PMQLONG rc) { MQPUT1(run.hconn, &od, &md, &pmo, 9, body, cc, rc); });
    run.noted("Q2", body, quick, codes.failed() ? Fate::Off : Fate::On);
    run.disconnect();
}

// MQHO_UNUSABLE_HOBJ if it failed. `queue`: where publications go, MQHO_NONE for one that is made.
MQHOBJ subscribe(Trial &run, MQLONG options, MQHOBJ &queue, std::string_view name = {})
{
    if (queue == MQHO_UNUSABLE_HOBJ) return queue;
    MQSD sd = {MQSD_DEFAULT};
    sd.Options = options;
    char topic[] = "weather/+";
    sd.ObjectString.VSPtr = topic;
    sd.ObjectString.VSLength = MQVS_NULL_TERMINATED;
    std::string buffer(name);
    sd.SubName.VSPtr = buffer.data();
    sd.SubName.VSLength = static_cast<MQLONG>(buffer.size());
    MQHOBJ hsub = MQHO_UNUSABLE_HOBJ;
    const Codes codes =
        run.call("MQSUB", [&](PMQLONG cc, PMQLONG rc) { MQSUB(run.hconn, &sd, &queue, &hsub, cc, rc); });
    return codes.failed() ? MQHO_UNUSABLE_HOBJ : hsub;
}

void topics(Trial &run)
{
    if (!run.connect()) return;
    MQHOBJ q1 = run.open("Q1", everything);
    MQHOBJ q2 = run.open("Q2", everything);
    MQHOBJ made = MQHO_NONE;
    // What an earlier run has left is resumed.
    const MQHOBJ durable =
        subscribe(run, MQSO_CREATE | MQSO_RESUME | MQSO_DURABLE | MQSO_NEW_PUBLICATIONS_ONLY, q1, "DURABLE");
    const MQHOBJ fleeting = subscribe(run, MQSO_CREATE | MQSO_NEW_PUBLICATIONS_ONLY, q2);
    const MQHOBJ managed = subscribe(run, MQSO_CREATE | MQSO_MANAGED, made);

    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_4;
    od.ObjectType = MQOT_TOPIC;
    char topic[] = "weather/rome";
    od.ObjectString.VSPtr = topic;
    od.ObjectString.VSLength = MQVS_NULL_TERMINATED;
    const MQHOBJ publisher = run.open(od, MQOO_OUTPUT);
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Options = MQPMO_RETAIN;
    const Codes codes = run.put(publisher, {}, "published", persistent, Unit::No, withFormat(MQFMT_STRING), pmo);
    // Where the subscription could not be made it may be there all the same: nothing could be undone either.
    const auto fateOn = [&](MQHOBJ hsub) {
        if (codes.CompCode == MQCC_UNKNOWN || (codes.failed() && !run.sawEnd())) return Fate::Off;
        return codes.failed() || hsub == MQHO_UNUSABLE_HOBJ ? Fate::Maybe : Fate::On;
    };
    run.noted("Q1", "published", persistent, fateOn(durable));
    run.noted("Q2", "published", persistent, fateOn(fleeting));
    if (durable != MQHO_UNUSABLE_HOBJ && fleeting != MQHO_UNUSABLE_HOBJ && publisher != MQHO_UNUSABLE_HOBJ) {
        const Codes put = run.put(publisher, "Q1", "in a unit", quick, Unit::Yes, withFormat(MQFMT_STRING), pmo);
        if (!put.failed()) run.notedInUnit("Q2", "in a unit", quick);
        run.commit();
    }
    if (managed != MQHO_UNUSABLE_HOBJ) {
        MQSRO sro = {MQSRO_DEFAULT};
        run.call(
            "MQSUBRQ",
            [&](PMQLONG cc, PMQLONG rc) { MQSUBRQ(run.hconn, managed, MQSR_ACTION_PUBLICATION, &sro, cc, rc); },
            run.faultless() ? MQRC_NONE : MQRC_NO_RETAINED_MSG);
    }
    run.close(managed);
    run.close(durable, MQCO_REMOVE_SUB);
    run.disconnect();
}

} // namespace

const std::vector<History> &histories()
{
    static const std::vector<History> all{
        {"Connecting", connecting},
        {"Messages", messages},
        {"UnitsOfWork", unitsOfWork},
        {"Properties", properties},
        {"Groups", groups},
        {"Conversion", conversion},
        {"DistributionList", distributionList},
        {"DynamicQueues", dynamicQueues},
        {"CommandMessages", commandMessages},
        {"Consumers", consumers},
        {"Reconnection", reconnection, true},
        {"Commands", commands},
        {"Lives", lives, true},
        {"Attributes", attributes},
        {"Topics", topics},
    };
    return all;
}

} // namespace mqrig::qmgr::faults

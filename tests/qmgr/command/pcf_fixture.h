// Command messages on a queue manager of the test's own, and their replies read back.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "qmgr/command/pcf_interpreter.h"
#include "qmgr/command/pcf_reader.h"
#include "qmgr/command/pcf_writer.h"
#include "qmgr/store/seams.h"
#include "queue_manager_fixture.h"

namespace mqrig::qmgr::command {

inline void PrintTo(const PcfFault &fault, std::ostream *os)
{
    *os << "reason " << fault.reason << ", " << fault.about << " is " << fault.value;
}

inline MQCFH commandHeader(MQLONG command)
{
    MQCFH header = {MQCFH_DEFAULT};
    header.Command = command;
    return header;
}

inline std::span<const std::byte> bytesOf(const std::string &text)
{
    return {reinterpret_cast<const std::byte *>(text.data()), text.size()};
}

// One reply.
struct Reply {
    MQCFH header{};
    std::vector<PcfParameter> parameters;

    const PcfParameter *find(MQLONG id) const
    {
        for (const PcfParameter &parameter : parameters)
            if (parameter.id == id) return &parameter;
        return nullptr;
    }
    // -1 and "?" where there is none.
    MQINT64 number(MQLONG id) const
    {
        const PcfParameter *parameter = find(id);
        return parameter == nullptr || parameter->numbers.empty() ? -1 : parameter->numbers.front();
    }
    std::string text(MQLONG id) const
    {
        const PcfParameter *parameter = find(id);
        return parameter == nullptr || parameter->texts.empty() ? "?" : std::string(textOf(parameter->texts.front()));
    }
    std::vector<std::string> texts(MQLONG id) const
    {
        std::vector<std::string> all;
        if (const PcfParameter *parameter = find(id))
            for (const std::string &part : parameter->texts)
                all.emplace_back(textOf(part));
        return all;
    }
    std::vector<MQLONG> ids() const
    {
        std::vector<MQLONG> all;
        for (const PcfParameter &parameter : parameters)
            all.push_back(parameter.id);
        return all;
    }
};

class PcfTest : public QueueManagerFixture {
protected:
    using Parameters = std::function<void(PcfWriter &)>;

    // Runs a command and reads its replies, each of which must be well-formed and numbered.
    std::vector<Reply> run(MQLONG command, const Parameters &parameters = {}, MQLONG encoding = MQENC_NATIVE)
    {
        return run(commandHeader(command), parameters, encoding);
    }
    std::vector<Reply> run(const MQCFH &header, const Parameters &parameters = {}, MQLONG encoding = MQENC_NATIVE)
    {
        PcfWriter writer(header, encoding);
        if (parameters) parameters(writer);
        return runMessage(writer.message(), encoding);
    }
    std::vector<Reply> runMessage(const std::string &message, MQLONG encoding = MQENC_NATIVE)
    {
        const PcfAnswer answer = runPcf(*attachment_, {bytesOf(message), encoding, putTime, repeated});
        compCode = answer.CompCode;
        std::vector<Reply> replies;
        for (const std::string &body : answer.replies) {
            ReadPcf read = readPcf(bytesOf(body), MQENC_NATIVE);
            EXPECT_FALSE(read.fault) << read.fault.reason;
            EXPECT_EQ(read.header.Type, MQCFT_RESPONSE);
            EXPECT_EQ(read.header.MsgSeqNumber, static_cast<MQLONG>(replies.size() + 1));
            EXPECT_EQ(read.header.Control, replies.size() + 1 == answer.replies.size() ? MQCFC_LAST : MQCFC_NOT_LAST);
            replies.push_back({read.header, std::move(read.parameters)});
        }
        EXPECT_FALSE(replies.empty());
        return replies;
    }

    // The command succeeds with nothing to tell.
    void expectDone(MQLONG command, const Parameters &parameters = {})
    {
        const auto replies = run(command, parameters);
        ASSERT_EQ(replies.size(), 1U) << replies.front().header.Reason;
        EXPECT_EQ(replies[0].header.CompCode, MQCC_OK);
        EXPECT_EQ(replies[0].header.Reason, MQRC_NONE);
        EXPECT_EQ(replies[0].header.Command, command);
        EXPECT_TRUE(replies[0].parameters.empty());
    }

    // The fault that a command's first reply tells, behind which only the summary comes.
    PcfFault faultIn(const std::vector<Reply> &replies)
    {
        EXPECT_EQ(replies.size(), 2U);
        EXPECT_EQ(compCode, MQCC_FAILED);
        const Reply &first = replies.front();
        EXPECT_EQ(first.header.CompCode, MQCC_FAILED);
        EXPECT_EQ(replies.back().header.CompCode, MQCC_FAILED);
        EXPECT_EQ(replies.back().header.Reason, MQRCCF_COMMAND_FAILED);
        EXPECT_TRUE(replies.back().parameters.empty());
        if (first.parameters.empty()) return {first.header.Reason};
        return {first.header.Reason, first.parameters.front().id,
                static_cast<MQLONG>(first.parameters.front().numbers.front())};
    }
    PcfFault faultOfCommand(MQLONG command, const Parameters &parameters = {})
    {
        return faultIn(run(command, parameters));
    }

    void createLocal(std::string_view name, const Parameters &more = {})
    {
        expectDone(MQCMD_CREATE_Q, [&](PcfWriter &writer) {
            writer.text(MQCA_Q_NAME, name, MQ_Q_NAME_LENGTH);
            writer.integer(MQIA_Q_TYPE, MQQT_LOCAL);
            if (more) more(writer);
        });
    }

    std::int64_t putTime = store::currentTime();
    bool repeated = false;
    MQLONG compCode = MQCC_UNKNOWN;
};

} // namespace mqrig::qmgr::command

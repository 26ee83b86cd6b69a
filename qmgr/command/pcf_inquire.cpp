#include "qmgr/command/pcf_commands.h"

namespace mqrig::qmgr::command {

void inquireObjects(const PcfCommand &command, PcfReplies &replies)
{
    const PcfKinds kinds = readKinds(command);
    const PcfSelection selection = readSelection(command, command.family.attributes);
    const PcfFilter filter = readFilter(command);
    for (const PcfFault &fault : {kinds.fault, selection.fault, filter.fault})
        if (fault) replies.fail(fault);
    if (replies.failed()) return;

    const InquiredObjects inquired = inquireObjects(command.attachment, command.text(command.family.name), kinds.kinds);
    bool any = false;
    for (const InquiredObject &object : inquired.objects) {
        if (filter.filter && !filter.filter->passes(object)) continue;
        any = true;
        writeObject(replies.add(), command.family, object, selection);
    }
    if (!inquired.outcome.ok()) return replies.judge(inquired.outcome, command.family.name);
    if (!any) replies.fail(faultOf(MQRC_UNKNOWN_OBJECT_NAME, command.family.name));
}

// One reply with all names; none that fits is no error.
void inquireObjectNames(const PcfCommand &command, PcfReplies &replies)
{
    const PcfKinds kinds = readKinds(command);
    if (kinds.fault) return replies.fail(kinds.fault);
    const InquiredObjects inquired = inquireObjects(command.attachment, command.text(command.family.name), kinds.kinds);
    if (!inquired.outcome.ok() && inquired.outcome.Reason != MQRC_UNKNOWN_OBJECT_NAME)
        replies.judge(inquired.outcome, command.family.name);

    std::vector<std::string> names;
    std::vector<MQLONG> types;
    for (const InquiredObject &object : inquired.objects) {
        names.push_back(object.definition.name());
        types.push_back(objects::queueType(object.definition.kind()));
    }
    PcfWriter &reply = replies.add();
    reply.texts(command.family.names, names, MQ_OBJECT_NAME_LENGTH);
    if (command.family.kinds == objects::allQueues) reply.integers(MQIACF_Q_TYPES, types);
}

} // namespace mqrig::qmgr::command

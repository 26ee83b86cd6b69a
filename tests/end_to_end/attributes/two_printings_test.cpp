// One truth, two printings: every attribute selector that mqrig knows, asked for alone with -inq, against what DISPLAY
// shows of the same object.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "tables.h"
#include "transcript.h"

namespace {

// Keyword and value; the value of a flag such as NOSHARE is empty.
struct Shown {
    std::string keyword;
    std::string value;

    bool operator==(const Shown &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Shown &shown)
{
    return out << shown.keyword << '(' << shown.value << ')';
}

// One object, with values that are not the defaults wherever one may be given.
struct TestObject {
    const char *name;
    const char *selection; // options of mqrig that name it
    const char *display;   // what the command language calls it
    bool isQueue;
    std::vector<const char *> commands; // that make it
    const char *firstUse = "true";      // what else makes it
};
std::ostream &operator<<(std::ostream &out, const TestObject &object)
{
    return out << object.name;
}

const TestObject testObjects[] = {
    {"QueueManager",
     "",
     "QMGR",
     false,
     {"ALTER QMGR DESCR('In words') DEADQ(DEAD) DEFXMITQ(XMIT) ACCTCONO(ENABLED) ACCTINT(17) ACCTMQI(ON) ACCTQ(ON) +",
      "AUTHOREV(ENABLED) CHAD(ENABLED) CHADEV(ENABLED) CHADEXIT('/a/b(c)') CHLEV(EXCEPTION) CLWLDATA('data') +",
      "CLWLEXIT('exit') CLWLLEN(7) CLWLMRUC(8) CMDEV(NODISPLAY) CONFIGEV(ENABLED) INHIBTEV(ENABLED) +",
      "LOCALEV(ENABLED) LOGGEREV(ENABLED) MARKINT(1234) MAXHANDS(99) MAXMSGL(99999) MAXUMSGS(98) PARENT(UP) +",
      "PERFMEV(ENABLED) PSMODE(COMPAT) PSNPMSG(KEEP) PSNPRES(SAFE) PSRTYCNT(3) PSSYNCPT(YES) REMOTEEV(ENABLED) +",
      "REPOS(CLUSTER) SSLEV(ENABLED) SSLFIPS(YES) SSLRKEYC(5) STATACLS(LOW) STATCHL(MEDIUM) STATINT(44) +",
      "STATMQI(ON) STATQ(ON) STRSTPEV(DISABLED) TREELIFE(33) TRIGINT(22) MONQ(HIGH)"}},
    {"LocalQueue",
     "-q LOCAL",
     "QLOCAL(LOCAL)",
     true,
     {"DEFINE QLOCAL(LOCAL) DESCR('It''s one (of many)') ACCTQ(ON) BOQNAME(BACK.OUT) BOTHRESH(3) CLUSTER(C) +",
      "CLWLPRTY(1) CLWLRANK(2) CLWLUSEQ(LOCAL) DEFBIND(NOTFIXED) DEFPRTY(4) DEFPSIST(YES) DEFREADA(YES) +",
      "DEFSOPT(EXCL) DISTL(YES) GET(DISABLED) NOHARDENBO INITQ(INIT) MAXDEPTH(77) MAXMSGL(88) MSGDLVSQ(FIFO) +",
      "NPMCLASS(HIGH) PROCESS(PROC) PROPCTL(FORCE) PUT(DISABLED) QDEPTHHI(70) QDEPTHLO(10) QDPHIEV(ENABLED) +",
      "QDPLOEV(ENABLED) QDPMAXEV(DISABLED) QSVCIEV(OK) QSVCINT(55) RETINTVL(66) SCOPE(CELL) NOSHARE STATQ(OFF) +",
      "TRIGDATA('start it') TRIGDPTH(9) TRIGGER TRIGMPRI(2) TRIGTYPE(DEPTH) USAGE(XMITQ)"}},
    {"PlainLocalQueue", "-q SYSTEM.DEFAULT.LOCAL.QUEUE", "QLOCAL(SYSTEM.DEFAULT.LOCAL.QUEUE)", true, {}},
    {"AliasQueue",
     "-q ALIAS",
     "QALIAS(ALIAS)",
     true,
     {"DEFINE QLOCAL(BASE)", "DEFINE QALIAS(ALIAS) TARGET(BASE) DESCR('Other name') CLUSNL(SOME) CLWLPRTY(3) +",
      "CLWLRANK(4) DEFBIND(GROUP) DEFPRTY(5) DEFPSIST(YES) DEFREADA(DISABLED) GET(DISABLED) PROPCTL(NONE) "
      "SCOPE(CELL)"}},
    {"RemoteQueue",
     "-q REMOTE",
     "QREMOTE(REMOTE)",
     true,
     {"DEFINE QLOCAL(QM9) USAGE(XMITQ)",
      "DEFINE QREMOTE(REMOTE) RNAME(THERE) RQMNAME(QM8) XMITQ(QM9) DESCR('Far away') CLUSTER(C) CLWLPRTY(5) +",
      "DEFBIND(NOTFIXED) DEFPRTY(6) DEFPSIST(YES) SCOPE(CELL)"}},
    {"DynamicQueue",
     "-q DYNAMIC",
     "QLOCAL(DYNAMIC)",
     true,
     {"DEFINE QMODEL(MODEL) DEFTYPE(PERMDYN) DESCR('Made of a model') MAXDEPTH(7) DEFSOPT(SHARED) SHARE +",
      "DEFPRTY(3) TRIGGER TRIGTYPE(EVERY) INITQ(INIT) QDEPTHHI(90) PROPCTL(ALL)"},
     "mqrig -qm QM1 -q MODEL -dq DYNAMIC -inq MQIA_Q_TYPE"},
    {"Namelist",
     "-nl SHOPS",
     "NAMELIST(SHOPS)",
     false,
     {"DEFINE NAMELIST(SHOPS) NAMES(SHOP.A, 'shop.b', SHOP.C) DESCR('All of them')"}},
    {"EmptyNamelist", "-nl SYSTEM.DEFAULT.NAMELIST", "NAMELIST(SYSTEM.DEFAULT.NAMELIST)", false, {}},
    {"Process",
     "-p PROC",
     "PROCESS(PROC)",
     false,
     {"DEFINE PROCESS(PROC) APPLTYPE(NOTESAGENT) APPLICID('/usr/bin/it --now') USERDATA('u d') ENVRDATA('e=f') +",
      "DESCR('Starts it')"}},
};

std::string run(const std::filesystem::path &store, const std::string &command, const std::string &input = {})
{
    const CommandResult result = runShell(command, input, store);
    EXPECT_EQ(result.exitCode, 0) << command << '\n' << result.output << result.error;
    return result.output;
}

// What DISPLAY shows: the columns of its lines by keyword, TRIGGER and NOTRIGGER under the name of the row that mqrig
// has for them.
std::map<std::string, Shown> displayed(const std::filesystem::path &store, const std::string &object)
{
    std::map<std::string, Shown> attributes;
    std::istringstream lines(run(store, "rigqm mqsc QM1 -e 'DISPLAY " + object + " ALL'"));
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("   ")) continue;
        // The second column begins behind the 40 characters of the first, unless the first is wider.
        const bool two = line.size() > 43 && line[42] == ' ' && line[43] != ' ';
        for (std::string part : {line.substr(3, two ? 39 : std::string::npos), two ? line.substr(43) : std::string()}) {
            part.erase(part.find_last_not_of(' ') + 1);
            if (part.empty()) continue;
            const std::size_t open = part.find('(');
            const std::string keyword = part.substr(0, open);
            std::string value;
            if (open != std::string::npos) value = part.substr(open + 1, part.size() - open - 2);
            if (value == " ") value.clear();
            attributes[keyword] = {keyword, value};
        }
    }
    return attributes;
}

const AttributeOutput *outputRow(MQLONG selector)
{
    const AttributeOutput *row = prm_to_msg;
    while (row->keyword != nullptr && row->selector != selector)
        ++row;
    return row->keyword != nullptr ? row : nullptr;
}

// The keywords under which a selector's value may be displayed: one, or those of a flag.
std::vector<std::string> keywordsOf(const AttributeOutput &row)
{
    if (*row.keyword != '\0') return {row.keyword};
    std::vector<std::string> keywords;
    for (const NamedInteger *value = row.values; value->name != nullptr; ++value)
        if (*value->name != '\0') keywords.emplace_back(value->name);
    return keywords;
}

// "'A','B'" as the command language writes it: "A,B".
std::string withoutQuotes(std::string_view list)
{
    std::string text;
    for (const char c : list)
        if (c != '\'') text += c;
    return text;
}

// What mqrig answered to one selector.
struct Answer {
    std::optional<Shown> shown; // nothing where it printed no attribute
    MQLONG reason = MQRC_NONE;
};

Answer parse(const std::string &line)
{
    const std::string_view failure = " ReasonCd=";
    if (const std::size_t at = line.find(failure); at != std::string::npos)
        return {{}, std::stoi(line.substr(at + failure.size()))};
    const std::size_t begin = line.find("] 1: ");
    EXPECT_NE(begin, std::string::npos) << line;
    const std::string text = line.substr(begin + 5);
    if (text.empty()) return {};
    const std::size_t open = text.find('(');
    if (open == std::string::npos) return {Shown{text, {}}};
    const std::string keyword = text.substr(0, open);
    std::string value = text.substr(open + 1, text.size() - open - 2);
    if (keyword == "NAMES") value = withoutQuotes(value);
    return {Shown{keyword, value}};
}

std::map<MQLONG, std::string> everySelector()
{
    std::map<MQLONG, std::string> selectors;
    for (const NamedInteger *row = MQIA_TBL; row->name != nullptr; ++row)
        selectors[row->value] = row->name;
    for (const AttributeSelector *row = MQCA_TBL; row->name != nullptr; ++row)
        selectors[row->selector] = row->name;
    return selectors;
}

// All selectors, one inquiry each.
std::map<MQLONG, Answer> inquired(const std::filesystem::path &store, const TestObject &object)
{
    const std::map<MQLONG, std::string> selectors = everySelector();
    std::string command = "for selector in";
    for (const auto &[selector, name] : selectors)
        command += ' ' + name;
    command += "; do mqrig -qm QM1 ";
    command += object.selection;
    command += " -inq $selector 2>&1 | head -n 1; done";
    std::istringstream lines(run(store, command));
    std::map<MQLONG, Answer> answers;
    for (const auto &[selector, name] : selectors) {
        std::string line;
        EXPECT_TRUE(std::getline(lines, line)) << name;
        answers[selector] = parse(line);
    }
    return answers;
}

class TwoPrintings : public testing::TestWithParam<TestObject> {
protected:
    TwoPrintings()
    {
        std::string commands;
        for (const char *line : GetParam().commands)
            commands += std::string(line) + '\n';
        run(store_.path(), "rigqm create -d QM1 && rigqm mqsc QM1", commands);
        run(store_.path(), GetParam().firstUse);
    }

    TemporaryFolder store_;
};

TEST_P(TwoPrintings, SayTheSame)
{
    const TestObject &object = GetParam();
    const std::map<MQLONG, Answer> answers = inquired(store_.path(), object);
    const std::map<std::string, Shown> attributes = displayed(store_.path(), object.display);
    std::set<std::string> ofQueues;
    if (object.isQueue)
        for (const char *kind : {"QLOCAL", "QALIAS", "QREMOTE", "QMODEL"})
            for (const auto &[keyword, shown] : displayed(store_.path(), std::string(kind) + "(SYSTEM.DEFAULT.*)"))
                ofQueues.insert(keyword);

    std::set<std::string> answered;
    for (const auto &[selector, answer] : answers) {
        const AttributeOutput *row = outputRow(selector);
        if (answer.reason != MQRC_NONE) continue;
        if (row == nullptr) { // mqrig has no words for it
            EXPECT_FALSE(answer.shown) << *answer.shown;
            continue;
        }
        // The attribute is displayed, once, and as mqrig shows it. Of a value that mqrig has no word for it shows
        // nothing.
        int found = 0;
        for (const std::string &keyword : keywordsOf(*row)) {
            const auto there = attributes.find(keyword);
            if (there == attributes.end()) continue;
            ++found;
            EXPECT_TRUE(answered.insert(keyword).second) << keyword << " was answered under another selector too";
            if (answer.shown) {
                EXPECT_EQ(*answer.shown, there->second);
            } else {
                ASSERT_NE(row->values, nullptr) << keyword;
                for (const NamedInteger *value = row->values; value->name != nullptr; ++value)
                    EXPECT_NE(there->second.value, value->name) << keyword;
            }
        }
        EXPECT_EQ(found, 1) << row->keyword << " (" << selector << ')';
    }

    for (const auto &[selector, answer] : answers) {
        const AttributeOutput *row = outputRow(selector);
        if (answer.reason == MQRC_NONE || row == nullptr) continue;
        // Nothing is refused that is displayed; DESCR has a selector of its own for each type of object.
        bool ofAnotherQueue = false;
        for (const std::string &keyword : keywordsOf(*row)) {
            EXPECT_TRUE(!attributes.contains(keyword) || answered.contains(keyword)) << keyword;
            if (ofQueues.contains(keyword) && !attributes.contains(keyword)) ofAnotherQueue = true;
        }
        EXPECT_EQ(answer.reason, ofAnotherQueue ? MQRC_SELECTOR_NOT_FOR_TYPE : MQRC_SELECTOR_ERROR)
            << row->keyword << " (" << selector << ')';
    }
    EXPECT_GE(answered.size(), 6U);
}

INSTANTIATE_TEST_SUITE_P(Of, TwoPrintings, testing::ValuesIn(testObjects),
                         [](const testing::TestParamInfo<TestObject> &tested) {
                             return std::string(tested.param.name);
                         });

} // namespace

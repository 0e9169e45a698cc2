// What wn says to input that it cannot use: one line, a status, and nothing changed.
#include <filesystem>
#include <ostream>

#include "tests/tools/WnFixture.h"

namespace wncom::test {
namespace {

struct WrongInput {
    const char* name;
    std::vector<std::string> arguments;  // "~" stands for the home
    int status;
    const char* says;
};

void PrintTo(const WrongInput& input, std::ostream* stream) { *stream << input.name; }

std::string InPlace(std::string text) {
    if (const std::size_t home = text.find('~'); home != std::string::npos) text.replace(home, 1, HomePath());
    return text;
}

class WnWrongInputTest : public WnTest, public testing::WithParamInterface<WrongInput> {
protected:
    void SetUp() override {
        WriteWholeFile(InHome("empty.xml"), "");
        WriteWholeFile(InHome("latin.xml"), "<t>\xF6</t>");
        WriteWholeFile(InHome("zero.xml"), std::string("<t>\0</t>", 8));
        WriteWholeFile(InHome("text.dll"), "no module");
        WriteWholeFile(InHome("open.xml"), "<a>\n<b>");
    }
};

TEST_P(WnWrongInputTest, IsRefusedInOneLine) {
    for (const bool json : {false, true}) {
        std::vector<std::string> arguments;
        for (const std::string& argument : GetParam().arguments) arguments.push_back(InPlace(argument));
        if (json) arguments.insert(arguments.begin(), "--json");
        ExpectRefusal(RunWn(arguments), GetParam().status, InPlace(GetParam().says));
    }
}

const std::string kLongName(250, 'a');

const WrongInput kInputs[] = {
    {"NoCommand", {}, 2, "'wn --help' tells more"},
    {"UnknownCommand", {"submitt", "x"}, 2, "no command submitt. 'wn --help'"},
    {"UnknownSubcommand", {"portmap", "ad", "x"}, 2, "no command ad. 'wn portmap --help'"},
    {"UnknownOption", {"directories", "--log", "x"}, 2, "--log"},
    {"MissingTicket", {"submit", "--to", "x"}, 2, "TICKET is required. 'wn submit --help'"},
    {"MissingAddress", {"submit", "~/empty.xml"}, 2, "--to is required"},
    {"EmptyAddress", {"submit", "~/empty.xml", "--to", ""}, 2, "--to: must not be empty"},
    {"ArgumentThatIsNoText", {"submit", "t.xml", "--to", "\xFF"}, 2, "is not UTF-8 text"},
    {"AbsentTicket", {"submit", "~/none.xml", "--to", "x"}, 1, "Cannot open ~/none.xml: There is no such file"},
    {"DirectoryAsTicket", {"submit", "~", "--to", "x"}, 1, "~ is a directory"},
    {"EmptyTicket", {"submit", "~/empty.xml", "--to", "x"}, 1, "empty.xml is empty"},
    {"TicketInAnotherEncoding", {"submit", "~/latin.xml", "--to", "x"}, 1, "latin.xml is not UTF-8 text"},
    {"TicketWithAZero", {"submit", "~/zero.xml", "--to", "x"}, 1, "zero.xml holds a zero byte"},
    {"DirectoryAsData", {"submit", "~/latin.xml", "--to", "x", "--data", "~"}, 1, "~ is a directory"},
    {"PathWithoutService", {"data", "get", "//a"}, 2, "--to is required"},
    {"AbsentSetDocument", {"data", "set", "~/none.xml", "--to", "x"}, 1, "Cannot open ~/none.xml"},
    {"BrokenSetDocument", {"data", "set", "~/open.xml", "--to", "x"}, 1, "~/open.xml is no XML document: line 2"},
    {"BrokenSubscription", {"events", "subscribe", "~/open.xml", "--to", "x"}, 1, "no XML document: line 2"},
    {"FilterWithoutAValue", {"events", "watch", "--filter", "a", "--to", "x"}, 2, "--filter: write NAME=VALUE"},
    {"DurationThatIsNone", {"events", "renew", "id", "--duration", "soon", "--to", "x"}, 2, "--duration"},
    {"NoEnd", {"events", "watch", "--count", "0", "--to", "x"}, 2, "--count"},
    {"AbsentModule", {"register", "~/none.dll"}, 1, "Cannot load ~/none.dll"},
    {"ModuleThatIsNone", {"register", "~/text.dll"}, 1, "Cannot load ~/text.dll"},
    {"LogPathWithAComma", {"logging", "file", "~/a,b.log"}, 1, "cannot hold a comma"},
    {"LogPathThatIsTooLong", {"logging", "file", "~/" + kLongName}, 1, "longer than 238 bytes"},
    {"LogInNoDirectory", {"logging", "file", "~/none/a.log"}, 1, "No such directory: ~/none/"},
    {"LogPathBeyondTheCodePage", {"logging", "file", "~/\xE6\x97\xA5.log"}, 1, "code page (1252)"},
    {"LevelOutOfRange", {"logging", "debug", "--level", "9"}, 2, "not in range"},
    {"UnknownComponent", {"logging", "off", "--for", "Other"}, 2, "--for: Other"},
    {"AbsentDirectory", {"directories", "--catalogue", "~/none"}, 1, "No such directory: ~/none"},
    {"FileAsDirectory", {"directories", "--libraries", "~/empty.xml"}, 1, "Not a directory: ~/empty.xml"},
    {"DirectoryAsPortMap", {"portmap", "file", "~"}, 1, "~ is a directory"},
    {"UnknownService", {"portmap", "remove", "http://x"}, 1, "no service with the address http://x"},
};

INSTANTIATE_TEST_SUITE_P(All, WnWrongInputTest, testing::ValuesIn(kInputs),
                         [](const auto& given) { return std::string(given.param.name); });

using WnTicketTest = WnTest;

TEST_F(WnTicketTest, ThatIsHugeIsRefusedUnread) {
    WriteWholeFile(InHome("huge.xml"), "<t/>");
    std::filesystem::resize_file(InHome("huge.xml"), 5ULL << 30);
    ExpectRefusal(RunWn({"submit", InHome("huge.xml"), "--to", "x"}), 1, "huge.xml is larger than 64 MB");
}

using WnOutputTest = WnTest;

TEST_F(WnOutputTest, ThatCannotBeWrittenIsAFailure) {
    const WnOutcome outcome = WnProcess({"logging", "show"}, "/dev/full").Wait();
    ExpectRefusal(outcome, 1, "Cannot write the answer");
}

}  // namespace
}  // namespace wncom::test

// XML that components read: any bytes decode and parse or are refused, and the quick walk over child steps finds what
// XPath finds.
#include <algorithm>

#include "components/Problem.h"
#include "components/portmap/PortMapData.h"
#include "components/xml/ChildPath.h"
#include "components/xml/XmlParse.h"
#include "components/xml/XmlSource.h"
#include "fuzz/support/Fuzz.h"

using namespace wncom::components;
using namespace wncom::fuzz;

namespace {

std::string PickDocument(FuzzedDataProvider& input) {
    std::string document = "<r>";
    std::string open;
    while (input.remaining_bytes() > 20 && document.size() < 500) {
        const char name = input.PickValueInArray({'a', 'b', 'c'});
        document += "<" + std::string(1, name) + ">";
        open += name;
        while (!open.empty() && input.ConsumeBool()) {
            document += "x</" + std::string(1, open.back()) + ">";
            open.pop_back();
        }
    }
    for (; !open.empty(); open.pop_back()) document += "</" + std::string(1, open.back()) + ">";
    return document + "</r>";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pugi::xml_document any;
    try {
        const std::string source = DecodeXmlFile(View(data, size));
        ParseXml(source, any);
        ParsePortMap(source);
    } catch (const Problem&) {
    }

    FuzzedDataProvider input(data, size);
    pugi::xml_document document;
    const pugi::xml_node top = ParseXml(PickDocument(input), document);
    ChildWalker walker;
    while (input.remaining_bytes() > 0) {
        std::string query = input.ConsumeBool() ? "." : "/r";
        for (int steps = input.ConsumeIntegralInRange(1, 3); steps > 0; --steps) {
            query += std::string("/") + input.PickValueInArray({'a', 'b', 'c'});
            if (input.ConsumeBool()) query += "[" + std::to_string(input.ConsumeIntegralInRange(1, 4)) + "]";
        }
        const auto walked = walker.Find(top, query);
        if (!walked) continue;
        pugi::xpath_node_set found = top.select_nodes(query.c_str());
        found.sort();
        const bool same =
            std::equal(walked->begin(), walked->end(), found.begin(), found.end(),
                       [](const pugi::xml_node& a, const pugi::xpath_node& b) { return a == b.node(); });
        Expect(same, query.c_str());
    }
    return 0;
}

// Interface descriptions: a description is refused with a place inside it, or its tables are what the layer reads.
#include "fuzz/support/Fuzz.h"
#include "platform/typelib/idl/Description.h"

using namespace wnplatform::typelib;
using wncom::fuzz::Expect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const std::string blob = Read(wncom::fuzz::View(data, size)).Blob();
        const std::optional<Tables> tables = Tables::FromBlob(blob);
        Expect(tables.has_value(), "what the tool writes is accepted");
        Expect(tables->Blob() == blob, "what the tool writes is read back");
    } catch (const DescriptionError& error) {
        Expect(error.Where().line >= 1 && error.Where().line <= size + 1, "the error's line exists");
        Expect(error.what()[0] != '\0', "the error says something");
    }
    return 0;
}

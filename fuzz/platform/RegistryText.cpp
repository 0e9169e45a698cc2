// The registry's text: whatever is read can be written and is read back the same, and so is what programs store.
#include "platform/registry/RegistryText.h"
#include "fuzz/support/Fuzz.h"

using namespace wnplatform;
using wncom::fuzz::Expect;

namespace {

void ReadBack(const RegistryTree& tree) {
    const std::string text = FormatRegistry(tree);
    RegistryTree again;
    ReadRegistry(again, text);
    Expect(!again.damaged, "what was written is understood");
    Expect(FormatRegistry(again) == text, "what was written is read back");
}

void StoreAndReadBack(FuzzedDataProvider& input) {
    RegistryTree tree;
    std::string lines = "\n";
    while (input.remaining_bytes() > 0) {
        const std::string path = "HKEY_LOCAL_MACHINE\\" + wncom::fuzz::PickText(input, 6, "abA [];\\");
        const std::string name = wncom::fuzz::PickText(input, 8, "aA0 []=-@;\"%\\");
        RegistryValue value;
        value.isPlainText = input.ConsumeBool();
        value.type = value.isPlainText ? REG_SZ : input.ConsumeIntegral<DWORD>();
        value.data = value.isPlainText ? wncom::fuzz::PickText(input, 16, "a\\\"\t;=[]%@ ")
                                       : input.ConsumeRandomLengthString(16);
        RegistryKey& key = tree.top.Make(path);
        key.values[name] = value;
        lines = KeyLine(key.Path()) + ValueLine(name, value);
        RegistryTree told;
        ReadRegistry(told, std::string(kRegistryHeader) + "\n\n" + lines);
        const RegistryKey* found = told.top.Descend(key.Path());
        Expect(!told.damaged && found, "a change is understood");
        Expect(found->Value(name) && found->Value(name)->HasDataOf(value), "a change is read back");
    }
    ReadBack(tree);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    if (input.ConsumeBool()) {
        StoreAndReadBack(input);
    } else {
        RegistryTree tree;
        ReadRegistry(tree, input.ConsumeRemainingBytesAsString());
        ReadBack(tree);
    }
    return 0;
}

// What only this host does with an exception of a method that is called late-bound: on Windows none passes the
// system.
#include <gtest/gtest.h>

#include "invoke_target.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

TEST(InvokeThroughTypeLibraryOnLinux, KeepsAnExceptionFromTheCaller) {
    const Held<ITypeLib> library = LoadLibraryOf("platform_invoke.dll");
    ITypeInfo* info = nullptr;
    ASSERT_EQ(library->GetTypeInfoOfGuid(ITarget::kIid, &info), S_OK);
    const Held<ITypeInfo> type(info);
    Target target;
    ITarget* instance = &target;
    DISPPARAMS none{};
    EXCEPINFO exception{};
    EXPECT_EQ(type->Invoke(instance, 6, DISPATCH_METHOD, &none, nullptr, &exception, nullptr), DISP_E_EXCEPTION);
    EXPECT_EQ(exception.scode, E_UNEXPECTED);
}

}  // namespace
}  // namespace wncom::test

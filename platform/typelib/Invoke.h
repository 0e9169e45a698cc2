// Calling a method through its object's table of functions with the arguments of a late-bound caller.
#pragma once

#include "platform/typelib/Description.h"

namespace wnplatform::typelib {

// Converts the arguments, calls, hands the result back and answers the method's own success; DISP_E_EXCEPTION for its
// failure, which stands in exception->scode; or why it was not called: DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTFOUND for
// a name, or the status of a conversion with the argument's place in *argumentError. The result (null: not wanted) is
// overwritten, not cleared. What the method throws counts as a failure of its own.
HRESULT InvokeMethod(const Method& method, void* instance, const DISPPARAMS& params, VARIANT* result,
                     EXCEPINFO* exception, UINT* argumentError) noexcept;

}  // namespace wnplatform::typelib

// Calling a method through its object's table of functions with the arguments of a late-bound caller.
#pragma once

#include "platform/typelib/Tables.h"

namespace wnplatform::typelib {

// Converts the arguments, calls, hands the result back and answers the method's own success; or why it was not
// called: DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTFOUND for a name, or the status of a conversion with the argument's
// place in *argumentError. DISP_E_EXCEPTION for the method's failure: its status is in *exception, with the error
// object that it left on the thread, which is taken. What the method throws counts as a failure of its own. The
// result (null: not wanted) is overwritten, not cleared.
HRESULT InvokeMethod(const Tables& tables, const MethodRow& method, void* instance, const DISPPARAMS& params,
                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError) noexcept;

}  // namespace wnplatform::typelib

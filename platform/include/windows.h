// The names of Windows that this system uses, for hosts without Windows. Each works as Windows' own does, as far as
// its header says; a name that is not here is not offered.
#pragma once

#include "guiddef.h"
#include "winbase.h"
#include "windef.h"
#include "winerror.h"
#include "winnls.h"
#include "winreg.h"

// COM and OLE Automation together.
#pragma once

#include "objbase.h"
#include "oleauto.h"

#pragma once

#include "Platform/Util/TSKString.h"

bool TeskProviderGetDllVersion(TSKString& version);

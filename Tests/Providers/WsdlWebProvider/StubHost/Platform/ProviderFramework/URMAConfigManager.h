#pragma once

#include "Platform/Util/TSKString.h"

class URMAConfigManager {
  public:
    static void cvtToAbsolutePath(TSKString& path);
};

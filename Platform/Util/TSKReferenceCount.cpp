#include "Platform/Util/TSKReferenceCount.h"

TSKReferenceCount::~TSKReferenceCount() = default;

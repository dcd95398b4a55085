#include "Platform/Util/TSKLogSink.h"

TSKLogSink::~TSKLogSink() = default;

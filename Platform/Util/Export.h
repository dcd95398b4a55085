#pragma once

/// Marks what libTeskPlatform.so offers to others; everything else in it stays hidden.
#define TESK_PLATFORM_EXPORT __attribute__((visibility("default")))

#pragma once

#include <cstdint>

/// A port of 127.0.0.1 that nobody uses at the moment, for a program that must be told one.
/// Errors: std::runtime_error when there is none.
[[nodiscard]] std::uint16_t freePort();

/// Whether a program listens at a port of 127.0.0.1. It sees a connection that ends at once.
[[nodiscard]] bool acceptsConnections(std::uint16_t port);

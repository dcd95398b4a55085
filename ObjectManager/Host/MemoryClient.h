#pragma once

#include <string>
#include <string_view>

#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Host {

/// Asks the providers for documents as a client does over HTTP, but in memory: the same entry, the
/// same path, the same bytes.
///
/// Thread safety: may be used by several threads at once.
class MemoryClient {
  public:
    /// A provider's answer.
    class Answer {
      public:
        /// `bytes` are head and body as the provider wrote them.
        explicit Answer(std::string bytes);

        /// The three digits, such as "200"; empty for what is no HTTP response.
        [[nodiscard]] std::string_view status() const noexcept;
        [[nodiscard]] std::string_view body() const noexcept;

      private:
        std::string bytes_;
        std::size_t bodyStart_;
    };

    /// `manager` must outlive this. `host` stands for the Host field, such as "localhost:5985".
    MemoryClient(const TeskProviderPluginManager& manager, TSKString host);

    /// Sends a GET request for a path.
    /// Errors: TeskBaseException when no provider serves the path; whatever the provider throws,
    /// also the TSKHTTPException of a provider that does not accept the client.
    [[nodiscard]] Answer get(const TSKString& path) const;

  private:
    const TeskProviderPluginManager& manager_;
    TSKString host_;
};

}  // namespace Host

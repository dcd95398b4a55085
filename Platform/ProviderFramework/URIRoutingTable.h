#pragma once

#include <map>
#include <string>

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// Which provider a request belongs to: the one whose URI is the longest prefix of the request's
/// path that ends at a `/` of the path or at its end. A path of one segment, such as
/// "/CIM_Foo.wsdl", that is no registered URI itself belongs to the provider of "/interop". Case is
/// ignored.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
class TESK_PLATFORM_EXPORT URIRoutingTable {
  public:
    enum class Outcome {
        kAdded,      ///< new, or the provider had registered it before
        kMalformed,  ///< the URI does not begin with `/`
        kTaken,      ///< another provider has registered it
    };

    /// Enters `uri` for the provider. A `/` at its end means nothing.
    [[nodiscard]] Outcome add(const TSKString& providerName, const TSKString& uri);

    /// Removes all URIs of the provider.
    void removeProvider(const TSKString& providerName);

    /// The name of the provider that `path` belongs to, null when it belongs to none. Valid until
    /// the table is changed.
    [[nodiscard]] const TSKString* find(const TSKString& path) const;

    /// The name of the provider that has registered `uri` itself, null when none has. Valid until
    /// the table is changed.
    [[nodiscard]] const TSKString* findRegistered(const TSKString& uri) const;

  private:
    [[nodiscard]] const TSKString* providerOf(std::string_view key) const;

    // By URI in lower case without a `/` at its end.
    std::map<std::string, TSKString, std::less<>> providers_;
};

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "ObjectManager/CimXml/Options.h"
#include "ObjectManager/CimXml/ServerError.h"
#include "ObjectManager/Mof/Compiler.h"

namespace CimXml {

/// What a server has in a namespace.
struct NamespaceContent {
    /// As Mof::compile() makes it, but without files: diagnostics name server, namespace, class and
    /// member in place of file and line. What cannot be used is left out with a warning.
    Mof::Compilation compilation;

    /// Differs when the server's classes differ. Compare it with that of another reading by the
    /// same process.
    std::uint64_t digest = 0;
};

/// Throws a ServerError of the kind kOptions unless `url` is like ServerOptions::url.
void requireServerUrl(const std::string& url);

/// A CIM server that runs, asked by CIM-XML (DMTF DSP0200 and DSP0201 over HTTP).
///
/// Thread safety: belongs to one thread; the stop tokens may be used by others.
class CimServer {
  public:
    /// Connects to nothing yet.
    /// Errors: ServerError of the kind kOptions for an address that is none.
    explicit CimServer(ServerOptions options);
    CimServer(const CimServer&) = delete;
    CimServer& operator=(const CimServer&) = delete;
    ~CimServer();

    /// The server in messages: "https://cim.example.com:5989".
    [[nodiscard]] const std::string& name() const noexcept;

    // Errors of the following: ServerError, of the kind kStopped soon after `stop` is requested;
    // std::bad_alloc.

    /// The namespaces that the server says it has, in its first interop namespace that is there;
    /// sorted, and none twice. What is no namespace name is left out.
    /// Errors: as above; kCimError when the server has none of the interop namespaces.
    [[nodiscard]] std::vector<std::string> namespaces(const std::stop_token& stop = {});

    /// Reads qualifiers and classes of a namespace; of the classes, those whose names fit one of
    /// `patterns` (Base::NamePattern), and their superclasses. All without a pattern. When the
    /// digest is `known`, the compilation is empty: the caller has it from an earlier reading.
    [[nodiscard]] NamespaceContent read(const std::string& nameSpace,
                                        const std::vector<std::string>& patterns = {},
                                        const std::stop_token& stop = {},
                                        std::optional<std::uint64_t> known = {});

  private:
    class Implementation;

    std::unique_ptr<Implementation> implementation_;
};

}  // namespace CimXml

#include "ObjectManager/Loading/ServerReader.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/CimXml/ServerError.h"

namespace Loading {

namespace {

using CimXml::ServerError;

// One reading.
class Reader {
  public:
    Reader(const ServerSource& server, const ServerRequest& request, const std::stop_token& stop)
        : server_(optionsWithPassword(server)), request_(request), stop_(stop) {}

    void read() {
        for (const NamespaceSource& source : request_.sources) {
            if (source.name.empty())
                readAll(source);
            else
                readOne(source);
        }
    }

  private:
    void readOne(const NamespaceSource& source) {
        const std::string& remoteName = source.remoteName;
        CimXml::NamespaceContent content =
            server_.read(remoteName, source.patterns, stop_, request_.knownDigest(source));
        requireUsable(content.compilation);
        request_.onNamespace({.source = source, .content = std::move(content)});
    }

    void readAll(const NamespaceSource& all) {
        std::optional<ServerError> refusal;
        bool isAnyRead = false;
        for (const std::string& name : server_.namespaces(stop_)) {
            if (isNamed(name))
                continue;
            NamespaceSource source = all;
            source.name = name;
            source.remoteName = name;
            try {
                readOne(source);
                isAnyRead = true;
            } catch (const ServerError& error) {
                if (error.kind() != ServerError::Kind::kCimError)
                    throw;
                refusal = error;
                warn(name, error);
            }
        }
        if (refusal && !isAnyRead)
            throw ServerError(*refusal);
    }

    void warn(const std::string& name, const ServerError& error) {
        Mof::Diagnostic warning;
        warning.severity = Mof::Severity::kWarning;
        warning.file = server_.name() + ": " + name;
        warning.place = {.line = 0, .column = 0};
        warning.message = "the namespace is left out: " + std::string(error.getMessage().data());
        request_.onWarning(std::move(warning));
    }

    [[nodiscard]] bool isNamed(const std::string& name) const {
        return request_.namedElsewhere.contains(name) ||
               std::ranges::any_of(request_.sources, [&](const NamespaceSource& source) {
                   return Base::equalsIgnoringCase(source.name, name);
               });
    }

    // A namespace without a single usable declaration, or too large as a whole, is the server's
    // failure like others.
    static void requireUsable(const Mof::Compilation& compilation) {
        const auto error =
            std::ranges::find(compilation.diagnostics, Mof::Severity::kError,
                              [](const Mof::Diagnostic& found) { return found.severity; });
        if (error != compilation.diagnostics.end())
            throw ServerError(ServerError::Kind::kLimit, error->file + ": " + error->message);
    }

    CimXml::CimServer server_;
    const ServerRequest& request_;
    const std::stop_token& stop_;
};

}  // namespace

void readServer(const ServerSource& server, const ServerRequest& request,
                const std::stop_token& stop) {
    Reader(server, request, stop).read();
}

}  // namespace Loading

#include "ObjectManager/Commands/DocumentRequest.h"

#include <exception>
#include <utility>

#include "ObjectManager/Base/Text.h"

namespace Commands {

namespace {

// Why a response has no document; empty if it has one.
std::string validate(const Host::MemoryClient::Response& response) {
    if (response.status().empty())
        return "the response is not HTTP";
    if (response.status() != "200")
        return "the response has the status " + std::string(response.status());
    return response.body().empty() ? "the response has no body" : "";
}

}  // namespace

RequestedDocument requestDocument(const Host::MemoryClient& client,
                                  const Repository::CimNamespace& nameSpace,
                                  const TSKString& document) {
    const std::string name(document);
    try {
        Host::MemoryClient::Response response = client.get("/" + nameSpace.name() + "/" + document);
        const std::string fault = validate(response);
        if (fault.empty())
            return {.response = std::move(response), .failure = {}};
        return {.response = std::nullopt, .failure = name + ": " + fault};
    } catch (const std::exception& error) {
        return {.response = std::nullopt,
                .failure = name + " cannot be made: " + std::string(Base::reasonOf(error))};
    }
}

}  // namespace Commands

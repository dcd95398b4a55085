#include "ObjectManager/Commands/DocumentRequest.h"

#include <exception>
#include <utility>

#include "Platform/Util/TeskBaseException.h"

namespace Commands {

namespace {

// Why an answer is no document; empty for one that is.
std::string faultOf(const Host::MemoryClient::Response& answer) {
    if (answer.status().empty())
        return "what is no HTTP response";
    if (answer.status() != "200")
        return "the status " + std::string(answer.status());
    return answer.body().empty() ? "nothing" : "";
}

}  // namespace

RequestedDocument requestDocument(const Host::MemoryClient& client,
                                  const Repository::CimNamespace& nameSpace,
                                  const TSKString& document) {
    const std::string name(document);
    try {
        Host::MemoryClient::Response answer = client.get("/" + nameSpace.name() + "/" + document);
        const std::string fault = faultOf(answer);
        if (fault.empty())
            return {.answer = std::move(answer), .failure = {}};
        return {.answer = std::nullopt, .failure = name + " is answered with " + fault};
    } catch (const TeskBaseException& error) {
        return {.answer = std::nullopt,
                .failure = name + " cannot be made: " + error.getMessage().data()};
    } catch (const std::exception& error) {
        return {.answer = std::nullopt, .failure = name + " cannot be made: " + error.what()};
    }
}

}  // namespace Commands

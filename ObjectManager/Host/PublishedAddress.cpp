#include "ObjectManager/Host/PublishedAddress.h"

namespace Host {

// The address stands at the end of the document. Descriptions come before it; where they are not
// escaped, they may hold anything.
std::optional<std::size_t> findHttpsInsertion(std::string_view document) noexcept {
    constexpr std::string_view kAddress = "<soap:address location=\"http";
    constexpr std::string_view kRest = "://";
    document = document.substr(0, document.find_last_not_of("\r\n") + 1);
    if (!document.ends_with("</wsdl:definitions>"))
        return std::nullopt;
    const std::size_t address = document.rfind(kAddress);
    if (address == std::string_view::npos)
        return std::nullopt;
    const std::size_t end = address + kAddress.size();
    return document.substr(end).starts_with(kRest) ? std::optional(end) : std::nullopt;
}

}  // namespace Host

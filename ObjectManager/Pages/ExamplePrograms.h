#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Pages/ExampleRequests.h"

namespace Pages {

/// Programs that send the example requests of a class: in Python with zeep, and in C++ with what
/// gSOAP makes of the WSDL document. A program is the set-up, which is the same for all requests of
/// a class, and a call. Texts of a model are literals in it, and nothing else.
///
/// Thread safety: immutable, may be used by several threads at once.
class ExamplePrograms {
  public:
    /// `service` is the address that requests are sent to, `wsdl` where the WSDL document of the
    /// class is.
    ExamplePrograms(std::string_view className, std::string service, std::string wsdl);

    [[nodiscard]] std::string zeepSetup() const;
    [[nodiscard]] std::string zeepCall(const ExampleRequest& request) const;

    /// The commands that make the sources, and a program of them.
    [[nodiscard]] std::string gsoapCommands() const;
    [[nodiscard]] std::string gsoapSetup() const;
    [[nodiscard]] std::string gsoapCall(const ExampleRequest& request) const;

  private:
    std::string className_;
    std::string service_;
    std::string wsdl_;
};

/// A text as a literal of Python, in quotes.
[[nodiscard]] std::string pythonText(std::string_view text);

/// XML as literals of Python, one a line, as the argument of a function.
[[nodiscard]] std::string pythonLines(std::string_view xml, int indent);

}  // namespace Pages

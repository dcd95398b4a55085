#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Pages/ClassRelations.h"
#include "ObjectManager/Pages/Layout.h"

namespace Pages {

/// A request that a client could send about a class, as its WSDL document describes it.
struct ExampleRequest {
    std::string operation;    ///< "Get", or the name of a method
    std::string description;  ///< one line
    std::string action;       ///< the URI that the header names
    bool isMethod;            ///< else it is one of the operations that every class has
    std::string selectors;    ///< the element SelectorSet, with a line end after each line
    std::string body;         ///< the element in the body, likewise; empty if there is none
    std::string arguments;    ///< what is in that element, as items of a dictionary of Python
    std::string envelope;     ///< the SOAP message, in UTF-8, with a line end after each line
};

/// Get, Put, Enumerate, Pull, Delete, then the methods of the class. Keys, parameters and what Put
/// needs are filled with values that their types and qualifiers allow; a string says which value
/// belongs there. `service` is where the service is, such as "http://host:5985".
///
/// A class without keys has no instances that could be named: its selectors name the namespace
/// alone.
///
/// May be called by several threads at once.
[[nodiscard]] std::vector<ExampleRequest> exampleRequests(const Repository::CimClass& cimClass,
                                                          const ClassRelations& relations,
                                                          std::string_view service);

/// The section of a class page that shows these requests, each as a command of curl around the
/// envelope, as a program for zeep and as one for gSOAP, with the address "#operation-Get" or
/// "#request-METHOD". Whatever the class is, the command can be pasted into a shell.
///
/// May be called by several threads at once.
[[nodiscard]] std::string exampleSection(const Repository::CimClass& cimClass,
                                         const ClassRelations& relations, Layout layout,
                                         std::string_view service);

}  // namespace Pages

#pragma once

#include <map>
#include <string>
#include <tuple>

#include "ObjectManager/Commands/SharedOptions.h"

namespace Commands {

struct VersionClass {
    std::string nameSpace;
    std::string className;

    friend bool operator<(const VersionClass& left, const VersionClass& right) noexcept {
        return std::tie(left.nameSpace, left.className) <
               std::tie(right.nameSpace, right.className);
    }
};

/// The WSDL documents of all classes of a version of a model.
using VersionDocuments = std::map<VersionClass, std::string>;

/// Makes the documents of the classes that `model` names, for the address that is given or
/// configured, in `jobs` threads. Messages about the classes go to standard error.
/// Errors: those of loadModel(); TeskBaseException where a document cannot be made.
[[nodiscard]] VersionDocuments makeDocuments(ModelOptions model, const AddressArguments& address,
                                             unsigned jobs);

/// Reads the documents that `tesk export` has written into a directory; none where it has written
/// none.
/// Errors: TeskBaseException where one cannot be read.
[[nodiscard]] VersionDocuments readExport(const std::string& directory);

}  // namespace Commands

#pragma once

#include <compare>
#include <map>
#include <string>
#include <vector>

namespace Commands {

struct VersionClass {
    std::string nameSpace;
    std::string className;

    friend auto operator<=>(const VersionClass&, const VersionClass&) = default;
};

/// The WSDL documents of all classes of a version of a model.
using VersionDocuments = std::map<VersionClass, std::string>;

/// How documents of MOF are made.
struct VersionOptions {
    std::vector<std::string> includePath;
    std::string host;
    unsigned jobs = 1;
};

/// Reads what an argument of the command names: a directory that `tesk export` has written; or MOF,
/// as "NAME=PATH", or as "PATH" for the namespace root/cimv2. Messages about MOF go to standard
/// error.
/// Errors: TeskBaseException where it is neither, where the MOF has errors, or where a document
/// cannot be read or made.
[[nodiscard]] VersionDocuments readVersion(const std::string& argument,
                                           const VersionOptions& options);

}  // namespace Commands

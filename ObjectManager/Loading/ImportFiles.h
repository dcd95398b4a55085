#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Mof/Compiler.h"

namespace Loading {

/// A MOF file that is to be written.
struct ImportFile {
    std::string name;  ///< as Base::OutputDirectory takes it
    std::string content;
};

/// The file that includes all others of a namespace.
inline constexpr std::string_view kMainFile = "main.mof";

/// The files that declare what a namespace has, in which classes come after their superclasses:
/// qualifiers.mof, a file a class, such as CIM_Foo.mof, and last kMainFile. It includes them such
/// that any compiler takes it: qualifiers, superclasses and, as far as possible, referenced classes
/// come first, and qualifiers that the server has not declared are declared as they are used.
/// Compiled again, the classes are the same, but for flavors that only repeat what the declaration
/// of the qualifier says, which are left out.
///
/// `content` is what CimXml::CimServer reads, so that names are names of CIM. A name that cannot be
/// the name of a file, since it is too long or another file has it, is completed by a hash.
[[nodiscard]] std::vector<ImportFile> importFiles(const Mof::Compilation& content);

}  // namespace Loading

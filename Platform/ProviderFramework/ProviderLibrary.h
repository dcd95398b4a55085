#pragma once

#include <string>
#include <vector>

#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// Loads provider libraries.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT ProviderLibrary {
  public:
    /// Loads the library libNAME.so at the path `file` and returns the provider that its factory
    /// getTeskNAME hands out. The provider belongs to the library.
    ///
    /// A library stays loaded until the process ends, also when it turns out to be of no use, since
    /// it may have started threads and registered callbacks.
    ///
    /// Errors: TeskBaseException with CIM_ERR_FAILED and the reason, when the file is no regular
    /// file, cannot be loaded, has no factory, or the factory returns null. Whatever the factory
    /// throws. An exception out of the library's static initialisation cannot be caught: it ends
    /// the process.
    [[nodiscard]] static urma::pf::Provider& load(const TSKString& file);

    /// Whether a file of that name, without its directory, is taken for a provider library:
    /// libNAME.so.
    [[nodiscard]] static bool isLibraryName(const TSKString& fileName);

    /// The paths of the files of such names in a directory, sorted.
    /// Errors: std::system_error when the directory cannot be read.
    [[nodiscard]] static std::vector<std::string> filesIn(const TSKString& directory);
};

#include "ObjectManager/Loading/ServerSource.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "ObjectManager/CimXml/ServerError.h"
#include "ObjectManager/Security/PrivateFile.h"
#include "Platform/Util/TeskBaseException.h"

namespace Loading {

namespace {

// In bytes, far more than servers take.
constexpr std::size_t kMaxPasswordFile = 4096;

// The content of such a file, without the end of its only line. No message shows any of it.
std::string readPassword(const std::string& path) {
    const auto fail = [](const std::string& fault) {
        throw CimXml::ServerError(CimXml::ServerError::Kind::kOptions, fault);
    };
    std::string password;
    try {
        password = Security::readPrivateFile(path, kMaxPasswordFile);
    } catch (const TeskBaseException& error) {
        fail(error.getMessage().data());
    }
    if (password.ends_with('\n'))
        password.pop_back();
    if (password.ends_with('\r'))
        password.pop_back();
    if (password.empty())
        fail(path + ": holds no password");
    if (password.find_first_of(std::string_view("\0\n\r", 3)) != std::string::npos)
        fail(path + ": has more than one line, or a zero byte; the password stands alone in it");
    return password;
}

}  // namespace

CimXml::ServerOptions optionsWithPassword(const ServerSource& source) {
    CimXml::ServerOptions options = source.options;
    if (!source.passwordFile.empty())
        options.password = readPassword(source.passwordFile);
    return options;
}

}  // namespace Loading

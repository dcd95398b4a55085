#include "ObjectManager/Commands/PasswordInput.h"

#include <array>
#include <bsd/readpassphrase.h>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <unistd.h>

#include "ObjectManager/Security/Credentials.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

using Security::SecretText;

// Longer lines are cut, which leaves more than the longest password.
constexpr std::size_t kMaxLineLength = 2 * Security::kMaxPasswordLength;

[[noreturn]] void fail(const TSKString& message) {
    throw TeskBaseException("Commands::readPassword", message, CIM_ERR_FAILED);
}

[[noreturn]] void failToRead() {
    fail("The password cannot be read: " + TSKString(std::strerror(errno)));
}

struct WipedBuffer {
    std::array<char, kMaxLineLength + 1> bytes = {};

    WipedBuffer() = default;
    WipedBuffer(const WipedBuffer&) = delete;
    WipedBuffer& operator=(const WipedBuffer&) = delete;
    ~WipedBuffer() { explicit_bzero(bytes.data(), bytes.size()); }
};

SecretText readHidden(const char* prompt) {
    WipedBuffer line;
    // RPP_REQUIRE_TTY: without a terminal that can be told to hide it, the password would be shown.
    if (readpassphrase(prompt, line.bytes.data(), line.bytes.size(), RPP_REQUIRE_TTY) == nullptr)
        failToRead();
    return SecretText(line.bytes.data());
}

// Returns whether there was a byte before the end of the file.
bool readByte(int input, char& byte) {
    for (;;) {
        const ssize_t count = read(input, &byte, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            failToRead();
        return count == 1;
    }
}

SecretText readLine(int input) {
    SecretText line;
    char byte = '\0';
    while (line.size() < kMaxLineLength && readByte(input, byte) && byte != '\n')
        line.append(byte);
    if (line.view().ends_with('\r'))
        return SecretText(line.view().substr(0, line.size() - 1));
    return line;
}

void requireValid(const SecretText& password) {
    const std::string_view fault = Security::validatePassword(password.view());
    if (!fault.empty())
        fail("The password cannot be used: " + TSKString(fault));
}

}  // namespace

SecretText readNewPassword(int input) {
    const bool isTerminal = isatty(input) == 1;
    SecretText password = isTerminal ? readHidden("Password: ") : readLine(input);
    requireValid(password);
    if (isTerminal && readHidden("Again: ").view() != password.view())
        fail("The two passwords differ");
    return password;
}

Security::SecretText readPassword(const std::string& prompt) {
    SecretText password = readHidden(prompt.c_str());
    if (password.isEmpty())
        fail("No password is typed");
    return password;
}

}  // namespace Commands

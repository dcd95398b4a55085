#include "ObjectManager/Commands/Passwd/PasswordInput.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <unistd.h>

#include "ObjectManager/Commands/Passwd/HiddenInput.h"
#include "ObjectManager/Security/CredentialText.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

using Security::SecretText;

[[noreturn]] void fail(const TSKString& message) {
    throw TeskBaseException("Commands::readNewPassword", message, CIM_ERR_FAILED);
}

// Longer lines are not read to their end: they hold no password anyway.
constexpr std::size_t kMaxLineLength = 2 * Security::kMaxPasswordLength;

// A byte of a file; none at its end.
bool readByte(int input, char& byte) {
    for (;;) {
        const ssize_t count = read(input, &byte, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail("The password cannot be read: " + TSKString(std::strerror(errno)));
        return count == 1;
    }
}

SecretText readLine(int input) {
    SecretText line;
    char byte = '\0';
    while (line.size() < kMaxLineLength && readByte(input, byte) && byte != '\n')
        line.append(byte);
    if (line.view().ends_with('\r'))
        line.shorten(line.size() - 1);
    return line;
}

void requireValid(const SecretText& password) {
    if (const std::string_view fault = Security::faultOfPassword(password.view()); !fault.empty())
        fail("The password cannot be used: " + TSKString(fault));
}

}  // namespace

SecretText readNewPassword(int input, int prompts) {
    const bool isTerminal = isatty(input) == 1;
    SecretText password = isTerminal ? readHidden(input, prompts, "Password: ") : readLine(input);
    requireValid(password);
    if (isTerminal && readHidden(input, prompts, "Again: ").view() != password.view())
        fail("The two passwords differ");
    return password;
}

}  // namespace Commands

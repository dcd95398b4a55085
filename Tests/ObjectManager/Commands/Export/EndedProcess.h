#pragma once

#include <cerrno>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

/// The number of a process that has run and is gone.
/// Errors: std::system_error when none can be made.
inline pid_t idOfEndedProcess() {
    const pid_t process = fork();
    if (process == 0)
        _exit(0);
    if (process < 0 || waitpid(process, nullptr, 0) != process)
        throw std::system_error(errno, std::generic_category(), "a process that ends");
    return process;
}

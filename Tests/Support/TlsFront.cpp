#include "Tests/Support/TlsFront.h"

#include <algorithm>
#include <stdexcept>

#include "Tests/Support/LocalPort.h"
#include "Tests/Support/WaitUntil.h"

TlsFront::TlsFront(std::uint16_t server, const std::vector<Door>& doors) {
    std::string configuration =
        "defaults\n"
        "    mode tcp\n"
        "    timeout connect 60s\n"
        "    timeout client 60s\n"
        "    timeout server 60s\n"
        "listen tls\n"
        "    server plain 127.0.0.1:" +
        std::to_string(server) + "\n";
    for (const Door& door : doors) {
        ports_.push_back(freePort());
        configuration +=
            "    bind 127.0.0.1:" + std::to_string(ports_.back()) + " ssl crt " + door.certificate;
        if (!door.clientAuthority.empty())
            configuration += " verify required ca-file " + door.clientAuthority;
        configuration += "\n";
    }
    program_ = std::make_unique<RunningProgram>(std::vector<std::string>{
        "haproxy", "-db", "-f", directory_.write("haproxy.cfg", configuration)});
    // All are opened at once.
    const bool isOpen =
        waitUntil([&] { return acceptsConnections(ports_.back()) || !program_->isRunning(); });
    if (!isOpen || !program_->isRunning())
        throw std::runtime_error("haproxy does not start: " + program_->waitForEnd().errors);
}

std::string TlsFront::url(std::size_t door) const {
    return "https://localhost:" + std::to_string(ports_.at(door));
}

#include "Tests/EndToEnd/Pages/Shown.h"

#include <regex>

std::vector<std::string> Shown::names() const {
    return found(R"(<li(?: class="")?><a href="[^"]*">([^<]*)</a>)");
}

std::string Shown::title() const {
    return found("<title>([^<]*)</title>").at(0);
}

std::string Shown::count() const {
    return found("<output[^>]*>([^<]*)</output>").at(0);
}

std::vector<std::string> Shown::found(const char* pattern) const {
    const std::regex expression(pattern);
    std::vector<std::string> all;
    for (std::sregex_iterator match(dom.begin(), dom.end(), expression), end; match != end; ++match)
        all.push_back((*match)[1]);
    return all;
}

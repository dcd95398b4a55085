#include "Tests/ObjectManager/Metrics/MetricsText.h"

#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

namespace {

const std::regex kComment(R"(# (HELP|TYPE) ([a-zA-Z_:][a-zA-Z0-9_:]*) (.+))");
const std::regex kSample(
    R"re(([a-zA-Z_:][a-zA-Z0-9_:]*)(\{([a-zA-Z_][a-zA-Z0-9_]*="([^"\\\n]|\\["\\n])*",?)*\})? (\S+))re");
const std::regex kNumber(R"([-+]?([0-9]+(\.[0-9]*)?([eE][-+]?[0-9]+)?|Inf)|NaN)");
const std::set<std::string> kTypes = {"counter", "gauge", "histogram", "summary", "untyped"};

// The metric that a sample belongs to: a histogram has samples of three names.
std::string metricOf(const std::string& sample, const std::map<std::string, std::string>& types) {
    for (const std::string ending : {"_bucket", "_sum", "_count"}) {
        if (!sample.ends_with(ending))
            continue;
        const auto type = types.find(sample.substr(0, sample.size() - ending.size()));
        if (type != types.end() && type->second == "histogram")
            return type->first;
    }
    return sample;
}

}  // namespace

std::string faultsOfMetrics(const std::string& text) {
    std::string faults;
    std::map<std::string, std::string> types;
    std::set<std::string> ended;
    std::string current;
    std::string lastBucket;
    double bucket = 0;
    if (!text.ends_with('\n'))
        faults += "the last line has no end\n";
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        std::string name;
        if (std::regex_match(line, match, kComment)) {
            name = match[2];
            if (match[1] == "TYPE") {
                if (!types.emplace(name, match[3]).second)
                    faults += "a second type: " + line + "\n";
                if (!kTypes.contains(match[3]))
                    faults += "no type: " + line + "\n";
            }
        } else if (std::regex_match(line, match, kSample)) {
            name = metricOf(match[1], types);
            if (!types.contains(name))
                faults += "a sample without a type: " + line + "\n";
            if (!std::regex_match(match[5].str(), kNumber))
                faults += "no number: " + line + "\n";
            if (types[name] == "counter" && !name.ends_with("_total"))
                faults += "a counter must end with _total: " + line + "\n";
            if (match[1].str().ends_with("_bucket")) {
                const double value = std::stod(match[5]);
                if (!lastBucket.empty() && value < bucket)
                    faults += "a bucket falls: " + line + "\n";
                bucket = value;
                lastBucket = line;
            } else if (!lastBucket.empty()) {
                if (lastBucket.find("le=\"+Inf\"") == std::string::npos)
                    faults += "the last bucket is finite: " + lastBucket + "\n";
                lastBucket.clear();
            }
        } else {
            faults += "neither comment nor sample: " + line + "\n";
            continue;
        }
        if (name != current) {
            ended.insert(current);
            if (ended.contains(name))
                faults += "a metric in two places: " + line + "\n";
            current = name;
        }
    }
    return faults;
}

std::string sampleOf(const std::string& text, const std::string& name) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + " "))
            return line.substr(name.size() + 1);
    }
    return "none";
}
